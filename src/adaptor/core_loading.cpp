#include "adaptor/install_paths.h"
#include "adaptor/max_adaptor_interface.h"
#include "adaptor/panel.h"
#include "adaptor/utility_manager.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "platform/modules.h"
#include "tvl/error_code.h"
#include "tvl/ids.h"
#include "tvl/installation.h"
#include "tvl/log.h"
#include "tvl/panel.h"
#include "undo/undo_wrapper.h"

namespace {

constexpr TVL::Failure kCouldNotLoad{"CORE_COULDNOTLOAD", "Unable to load CORE",
                                     TVL::ErrorCode::kError};

bool HasAllRoutines(HMODULE library) {
    for (const char* name : {TVL::kGetVersionRoutine, TVL::kAttachRoutine, TVL::kDetachRoutine}) {
        if (GetProcAddress(library, name)) continue;
        TVL::Log scope("unable to bind a routine of the CORE", TVL::Log::kError);
        scope.WriteValue("routine", name);
        return false;
    }
    return true;
}

// Marks the time in which a routine of the Core's runs that brings it up or takes it down.
class Passage {
  public:
    explicit Passage(bool& mark) : mark_(mark) { mark_ = true; }
    ~Passage() { mark_ = false; }
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

  private:
    bool& mark_;
};

}  // namespace

std::int32_t UtilityManager::AttachCore() {
    if (coreComesOrGoes) return 0;
    if (link.core) {
        ShowAttachState(panelWindow, TVL::kDetachText);
        return 0;
    }
    LetCoreGo();
    const std::int32_t status = LoadCore();
    ShutDownIfAsked();
    return status;
}

std::int32_t UtilityManager::LoadCore() {
    const std::string path = ReadInstallValue(TVL::kInstallValue) + TVL::kCoreLibrary;
    link.coreModule = LoadLibraryA(path.c_str());
    if (!link.coreModule) {
        const std::int32_t status = TVL::Report(kCouldNotLoad);
        TVL::Log(TVL::Log::kError).WriteValue("CORE library", path);
        if (IsInstallValueTooLong(TVL::kInstallValue))
            TVL::Log(TVL::Log::kError).WriteValue(TVL::kInstallValue, "longer than 1,023 bytes");
        WriteTrace();
        return status;
    }
    if (KeepMatchingCore()) BringCoreUp();
    WriteTrace();
    return 0;
}

// The adaptor comes up here, before the Core is asked for anything.
bool UtilityManager::KeepMatchingCore() {
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();
    if (!HasAllRoutines(link.coreModule)) {
        DetachCore();
        return false;
    }
    const auto getVersion =
        platform::Routine<TVL::GetVersionRoutine>(link.coreModule, TVL::kGetVersionRoutine);
    std::uint32_t coreVersion = 0;
    if (!CallCore(TVL::kGetVersionRoutine, [&] { coreVersion = getVersion(); })) {
        DetachCore();
        return false;
    }
    const auto adaptorVersion = static_cast<std::uint32_t>(adaptor.GetVersion());
    if (coreVersion == adaptorVersion) return true;
    TVL::Log scope("version mismatch trying to attach to CORE", TVL::Log::kError);
    scope.WriteValue("CORE version", std::to_string(coreVersion));
    scope.WriteValue("Adaptor version", std::to_string(adaptorVersion));
    DetachCore();
    return false;
}

// A Core that refuses has gone as far as the adaptor is concerned, and one that throws has refused.
// The log that it placed may have gone with it, so nothing is written before that is out.
void UtilityManager::BringCoreUp() {
    const Passage passage(coreComesOrGoes);
    MaxAdaptorInterface* const adaptor = MaxAdaptorInterface::GetInstance();
    const std::uint32_t nests = BracketsSoFar().nests;
    const auto attach = platform::Routine<TVL::AttachRoutine>(link.coreModule, TVL::kAttachRoutine);
    const auto thrown = TVL::ThrownBy([&] { link.core = attach(adaptor); });
    ShowAttachState(panelWindow, link.core ? TVL::kDetachText : TVL::kAttachText);
    if (link.core) {
        LinkOptions();
        return;
    }
    SweepCore(thrown ? nests : kNoNests);
    if (thrown) TVL::TraceThrown(TVL::kAttachRoutine, *thrown);
}

void UtilityManager::LinkOptions() {
    for (const int option : {TVL::kOptimisedControllers, TVL::kDynamicMeshes})
        CallCore("BindOption", [&] { link.core->BindOption(option, 0); });
    TVL::Util::MessageNode* convertAll = nullptr;
    CallCore("GetOptionNode",
             [&] { convertAll = link.core->GetOptionNode(TVL::kConvertAllControllers, 0); });
    MaxAdaptorInterface::GetInstance()->Listen(convertAll);
}

std::int32_t UtilityManager::DetachCore() {
    ShowAttachState(panelWindow, TVL::kAttachText);
    LetCoreGo();
    ShutDownIfAsked();
    return 0;
}

void UtilityManager::ShutDownIfAsked() {
    if (shutdownWaits && !coreComesOrGoes) ShutDownAdaptor();
}

// One that was refused has been swept already.
void UtilityManager::LetCoreGo() {
    if (coreComesOrGoes || !link.coreModule) return;
    const Passage passage(coreComesOrGoes);
    WriteTrace();
    if (link.core) TakeCoreDown();
    FreeLibrary(link.coreModule);
    link.coreModule = nullptr;
    WriteTrace();
}

void UtilityManager::TakeCoreDown() {
    const Passage leaving(coreLeaves);
    ReleaseCoreChunks();
    const std::uint32_t nests = BracketsSoFar().nests;
    TVL::Log(TVL::Log::kNotice).Write("Adaptor is detaching core");
    const auto detach = platform::Routine<TVL::DetachRoutine>(link.coreModule, TVL::kDetachRoutine);
    const auto thrown = TVL::ThrownBy([&] { detach(link.core); });
    link.core = nullptr;
    SweepCore(thrown ? nests : kNoNests);
    if (thrown) TVL::TraceThrown(TVL::kDetachRoutine, *thrown);
}
