#include "adaptor/core_sweep.h"
#include "adaptor/install_paths.h"
#include "adaptor/max_adaptor_interface.h"
#include "adaptor/panel.h"
#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "platform/routine.h"
#include "resources/resource_ids.h"
#include "tvl/error_code.h"
#include "tvl/log.h"
#include "undo/undo_wrapper.h"

namespace {

constexpr const char* kInstallPathValue = "datapath";
constexpr const char* kCoreLibrary = "\\Core\\Core64.dll";  // below the install path

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
        ShowAttachState(panelWindow, kDetachText);
        return 0;
    }
    LetCoreGo();
    const std::string path = ReadInstallValue(kInstallPathValue) + kCoreLibrary;
    link.coreModule = LoadLibraryA(path.c_str());
    if (!link.coreModule) {
        const std::int32_t status = TVL::Report(kCouldNotLoad);
        TVL::Log(TVL::Log::kError).WriteValue("CORE library", path);
        if (IsInstallValueTooLong(kInstallPathValue))
            TVL::Log(TVL::Log::kError).WriteValue(kInstallPathValue, "longer than 1,023 bytes");
        WriteTrace();
        return status;
    }
    if (KeepMatchingCore()) {
        const Passage passage(coreComesOrGoes);
        const auto attach =
            platform::Routine<TVL::AttachRoutine>(link.coreModule, TVL::kAttachRoutine);
        link.core = attach(MaxAdaptorInterface::GetInstance());
        ShowAttachState(panelWindow, link.core ? kDetachText : kAttachText);
        if (link.core) LinkOptions();
    }
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
    const std::uint32_t coreVersion = getVersion();
    const auto adaptorVersion = static_cast<std::uint32_t>(adaptor.GetVersion());
    if (coreVersion == adaptorVersion) return true;
    TVL::Log scope("version mismatch trying to attach to CORE", TVL::Log::kError);
    scope.WriteValue("CORE version", std::to_string(coreVersion));
    scope.WriteValue("Adaptor version", std::to_string(adaptorVersion));
    DetachCore();
    return false;
}

void UtilityManager::LinkOptions() {
    link.core->BindOption(OptimizedTransformOption, 0);
    link.core->BindOption(DynamicMeshesOption, 0);
    TVL::Util::MessageNode* const convertAll = link.core->GetOptionNode(ConvertAllOption, 0);
    MaxAdaptorInterface::GetInstance()->Listen(convertAll);
}

std::int32_t UtilityManager::DetachCore() {
    ShowAttachState(panelWindow, kAttachText);
    LetCoreGo();
    return 0;
}

// A Core that refused may have left things behind as well.
void UtilityManager::LetCoreGo() {
    if (coreComesOrGoes || !link.coreModule) return;
    const Passage passage(coreComesOrGoes);
    WriteTrace();
    const int chunks = ReleaseCoreChunks();
    if (link.core) {
        TVL::Log(TVL::Log::kNotice).Write("Adaptor is detaching core");
        const auto detach =
            platform::Routine<TVL::DetachRoutine>(link.coreModule, TVL::kDetachRoutine);
        detach(link.core);
        link.core = nullptr;
    }
    SweepCore(chunks);
    FreeLibrary(link.coreModule);
    link.coreModule = nullptr;
}
