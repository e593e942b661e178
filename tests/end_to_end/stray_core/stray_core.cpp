#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "tvl/core_interface.h"
#include "tvl/log.h"

// A Core that does nothing well: its button warns and throws, it leaves undo groups open, and ends
// the process at times below 0, never comes back where time goes back, and crashes when the scene
// is emptied twice.

namespace {

class StrayCore final : public CoreInterface {
  public:
    explicit StrayCore(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {}

    void ShowCore(TVL::WindowHandle) override {
        adaptor_.SetLog(TVL::Log::GetInstance());
        for (int time = 0; time < 2; ++time) {
            TVL::Log scope("the file is odd", TVL::Log::kWarning);
            scope.WriteValue("line", 7);
            const TVL::Log inner("it was read up to there", TVL::Log::kNotice);
        }
        adaptor_.ClearLog();
        throw std::runtime_error("the button is broken");
    }
    void NotifyTimeChanged(double seconds) override {
        if (seconds < 0) std::exit(0);
        while (seconds < last_)
            std::this_thread::sleep_for(std::chrono::seconds(1));
        last_ = seconds;
        adaptor_.BeginUndoGroup("left open");
    }

    XMLNode GetCoreState() override { return XMLNode("TVL", ""); }
    void SetCoreState(XMLNode) override {}
    void ResetCore() override {
        if (++resets_ > 1) std::raise(SIGSEGV);
    }
    bool IsCoreRunning() override { return false; }
    void StopCore() override {}
    TVL::Util::MessageNode* GetOptionNode(int, int) override { return nullptr; }
    void BindOption(int, int) override {}
    void GetOptionValue(int, bool*) override {}

  private:
    TVL::AdaptorInterface& adaptor_;
    int resets_ = 0;
    double last_ = 0;
};

}  // namespace

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return new StrayCore(*adaptor);
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<StrayCore*>(core);
}
