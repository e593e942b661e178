#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tvl/core_interface.h"
#include "tvl/message.h"

// The Core that a test plays. It notes what is asked of it, in words such as "time 0.5", and
// answers from its plain fields.
class PuppetCore final : public CoreInterface {
  public:
    XMLNode GetCoreState() override;
    void SetCoreState(XMLNode given) override;
    void ResetCore() override;
    void ShowCore(TVL::WindowHandle mainWindow) override;
    void NotifyTimeChanged(double seconds) override;
    bool IsCoreRunning() override;
    void StopCore() override;
    TVL::Util::MessageNode* GetOptionNode(int option, int unused) override;
    void BindOption(int option, int unused) override;
    void GetOptionValue(int option, bool* value) override;

    using Calls = std::vector<std::string>;

    // Takes part in `detach`: gives back what a tidy Core gives back.
    void Leave();

    // What was noted since the last time.
    Calls TakeCalls();

    XMLNode state;
    bool isRunning = false;
    std::map<int, bool> options;
    std::unique_ptr<TVL::Util::MessageNode> convertButton;  // from attach to detach
    TVL::Util::MessageNode* otherButton = nullptr;          // given in its place
    TVL::WindowHandle shownIn = nullptr;
    std::function<void(const std::string&)> onCall;  // in the middle of a call
    std::function<void(int)> onOptionAsked;
    std::function<void()> onRunningAsked;
    std::function<void()> onLeave;

  private:
    void Note(std::string call);

    Calls calls_;
};
