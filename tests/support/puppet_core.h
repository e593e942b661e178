#pragma once

#include <functional>
#include <map>
#include <memory>
#include <sstream>

#include "tvl/core_interface.h"
#include "tvl/message.h"

// The Core that a test plays. It notes what is asked of it, in words such as "time 0.5", and
// answers from its plain fields.
class PuppetCore final : public CoreInterface {
  public:
    using Calls = std::vector<std::string>;

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

    // What was noted since the last time.
    Calls TakeCalls() { return std::exchange(calls_, {}); }

    // Takes part in `detach`: gives back what a tidy Core gives back.
    void Leave() {
        if (onLeave) onLeave();
        convertButton.reset();
    }

    XMLNode GetCoreState() override {
        Note("get state");
        return state;
    }
    void SetCoreState(XMLNode given) override {
        Note("set state " + given.Write());
        state = given;
    }
    void ResetCore() override { Note("reset"); }
    void ShowCore(TVL::WindowHandle mainWindow) override {
        shownIn = mainWindow;
        Note("show");
    }
    void NotifyTimeChanged(double seconds) override {
        Note((std::ostringstream() << "time " << seconds).str());
    }
    bool IsCoreRunning() override {
        if (onRunningAsked) onRunningAsked();
        return isRunning;
    }
    void StopCore() override {
        isRunning = false;
        Note("stop");
    }
    TVL::Util::MessageNode* GetOptionNode(int option, int) override {
        Note("option node " + std::to_string(option));
        if (otherButton) return otherButton;
        if (!convertButton) convertButton = std::make_unique<TVL::Util::MessageNode>("convert all");
        return convertButton.get();
    }
    void BindOption(int option, int) override { Note("bind " + std::to_string(option)); }
    void GetOptionValue(int option, bool* value) override {
        if (onOptionAsked) onOptionAsked(option);
        if (const auto known = options.find(option); known != options.end()) *value = known->second;
    }

  private:
    void Note(const std::string& call) {
        calls_.push_back(call);
        if (onCall) onCall(call);
    }

    Calls calls_;
};
