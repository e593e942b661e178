#include "adaptor/install_paths.h"
#include "adaptor/max_adaptor_interface.h"
#include "adaptor/panel.h"
#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "foundation/thrown.h"
#include "tvl/log.h"
#include "tvl/singleton.h"

namespace {

// The folder in which this adaptor keeps its data. The documents path ends in a backslash of its
// own, and the doubled one does no harm. Without documents it would be one on the current drive.
void MakeDataFolder() {
    const std::string documents = FindDocumentsPath();
    if (documents.empty()) return;
    const std::string adaptor = MaxAdaptorInterface::GetInstance()->GetShortName();
    CreateDirectoryA((documents + "\\data\\" + adaptor + "\\").c_str(), nullptr);
}

}  // namespace

// The scope outlives the log that it was opened in.
void UtilityManager::ShutDownAdaptor() {
    const TVL::Log scope("Shutting down adaptor", TVL::Log::kNotice);
    DetachCore();
    // The shutdown goes on without the folder.
    if (const auto thrown = TVL::ThrownBy(&MakeDataFolder))
        TVL::TraceThrown("MakeDataFolder", *thrown);
    WriteTrace();
    TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    RestartTrace();
    if (!isKept) Stop();
}
