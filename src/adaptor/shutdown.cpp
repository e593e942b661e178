#include "adaptor/install_paths.h"
#include "adaptor/max_adaptor_interface.h"
#include "adaptor/panel.h"
#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "tvl/log.h"
#include "tvl/singleton.h"

namespace {

// The folder in which this adaptor keeps its data. The documents path ends in a backslash of its
// own, and the doubled one does no harm.
std::string DataFolder() {
    const std::string adaptor = MaxAdaptorInterface::GetInstance()->GetShortName();
    return FindDocumentsPath() + "\\data\\" + adaptor + "\\";
}

}  // namespace

// The scope outlives the log that it was opened in.
void UtilityManager::ShutDownAdaptor() {
    const TVL::Log scope("Shutting down adaptor", TVL::Log::kNotice);
    DetachCore();
    CreateDirectoryA(DataFolder().c_str(), nullptr);
    WriteTrace();
    TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    RestartTrace();
    if (!isKept) Stop();
}
