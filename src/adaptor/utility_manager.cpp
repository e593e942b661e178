#include "adaptor/utility_manager.h"

#include <utility>

#include "adaptor/install_paths.h"
#include "adaptor/max_adaptor_interface.h"
#include "adaptor/panel.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "host/interface.h"
#include "measures/host_clock.h"
#include "scene_state/state_chunk.h"
#include "tvl/panel.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// Opens the utility and puts the command panel back on the page that the user had.
constexpr const char* kOpenUtilityScript =
    "panel = getCommandPanelTaskMode();"
    "UtilityPanel.OpenUtility 'Tarvo_Lumiset_Util';"
    "setCommandPanelTaskMode mode:panel;";

// The object outlives the module in whose memory the pointer to it lies.
void TellLeakChecker([[maybe_unused]] const void* object) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan_ignore_object(object);
#endif
}

// The folder in which this adaptor keeps its data. The documents path ends in a backslash of its
// own, and the doubled one does no harm. Without documents it would be one on the current drive.
void MakeDataFolder() {
    const std::string documents = FindDocumentsPath();
    if (documents.empty()) return;
    const std::string adaptor = MaxAdaptorInterface::GetInstance()->GetShortName();
    CreateDirectoryA((documents + "\\data\\" + adaptor + "\\").c_str(), nullptr);
}

}  // namespace

CoreLink& TheCoreLink() {
    return UtilityManager::Get().link;
}

bool IsCoreLeaving() {
    return UtilityManager::Get().IsCoreLeaving();
}

UtilityManager& UtilityManager::Get() {
    static UtilityManager* const manager = [] {
        auto* const made = new UtilityManager;
        TellLeakChecker(made);
        return made;
    }();
    return *manager;
}

std::uint32_t UtilityManager::Start() {
    const TraceAfter trace;
    hearsHost = false;
    isKept = false;
    const auto thrown = TVL::ThrownBy([this] {
        isKept = AttachCore() == 0;
        if (!isKept) return;
        HearHost();
        ExecuteStringScript(kOpenUtilityScript);
    });
    if (thrown) GiveUpStart(*thrown);
    return isKept ? GUPRESULT_KEEP : GUPRESULT_NOKEEP;
}

// A Core that is attached while the host's events go unheard would lose its state at every save.
void UtilityManager::GiveUpStart(const std::string& words) {
    TVL::TraceThrown("the start", words);
    isKept = false;
    TVL::TraceIfThrown("DetachCore", [this] { DetachCore(); });
    if (std::exchange(hearsHost, false))
        GetCOREInterface()->UnRegisterTimeChangeCallback(&timeCallback);
    Stop();
}

// The time callback stays. It is harmless, and an attach after this adds nothing to it.
void UtilityManager::Stop() {
    UnregisterHostEvents();
}

// A routine that brings the Core up or takes it down works with the adaptor, which goes when it has
// returned. The scope outlives the log that it was opened in.
void UtilityManager::ShutDownAdaptor() {
    shutdownWaits = coreComesOrGoes;
    if (shutdownWaits) return;
    const TVL::Log scope("Shutting down adaptor", TVL::Log::kNotice);
    ShowAttachState(panelWindow, TVL::kAttachText);
    TVL::TraceIfThrown("DetachCore", [this] { LetCoreGo(); });
    shutdownWaits = false;
    // The shutdown goes on without the folder.
    TVL::TraceIfThrown("MakeDataFolder", &MakeDataFolder);
    WriteTrace();
    TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    RestartTrace();
    if (!isKept) Stop();
}

IOResult UtilityManager::Save(ISave* save) {
    const TraceAfter trace;
    IOResult result = IO_ERROR;
    TVL::TraceIfThrown("the saving of the state", [&] { result = SaveState(*save); });
    return result;
}

IOResult UtilityManager::Load(ILoad* load) {
    const TraceAfter trace;
    IOResult result = IO_ERROR;
    TVL::TraceIfThrown("the loading of the state", [&] { result = LoadState(*load); });
    return result;
}

void UtilityManager::HearHost() {
    if (hearsHost) return;
    hearsHost = true;
    GetCOREInterface()->RegisterTimeChangeCallback(&timeCallback);
    RegisterHostEvents();
}

void UtilityManager::CTimeChangeCallback::TimeChanged(TimeValue t) {
    CoreInterface* const core = AttachedCore();
    if (!core) return;
    CallCore("NotifyTimeChanged", [&] { core->NotifyTimeChanged(SecondsOf(t)); });
}
