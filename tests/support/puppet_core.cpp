#include "tests/support/puppet_core.h"

#include <sstream>
#include <utility>

void PuppetCore::Note(std::string call) {
    calls_.push_back(call);
    if (onCall) onCall(call);
}

PuppetCore::Calls PuppetCore::TakeCalls() {
    return std::exchange(calls_, {});
}

void PuppetCore::Leave() {
    if (onLeave) onLeave();
    convertButton.reset();
}

XMLNode PuppetCore::GetCoreState() {
    Note("get state");
    return state;
}

void PuppetCore::SetCoreState(XMLNode given) {
    Note("set state " + given.Write());
    state = given;
}

void PuppetCore::ResetCore() {
    Note("reset");
}

void PuppetCore::ShowCore(TVL::WindowHandle mainWindow) {
    shownIn = mainWindow;
    Note("show");
}

void PuppetCore::NotifyTimeChanged(double seconds) {
    std::ostringstream text;
    text << "time " << seconds;
    Note(text.str());
}

bool PuppetCore::IsCoreRunning() {
    if (onRunningAsked) onRunningAsked();
    return isRunning;
}

void PuppetCore::StopCore() {
    isRunning = false;
    Note("stop");
}

TVL::Util::MessageNode* PuppetCore::GetOptionNode(int option, int) {
    Note("option node " + std::to_string(option));
    if (otherButton) return otherButton;
    convertButton = std::make_unique<TVL::Util::MessageNode>("convert all");
    return convertButton.get();
}

void PuppetCore::BindOption(int option, int) {
    Note("bind " + std::to_string(option));
}

void PuppetCore::GetOptionValue(int option, bool* value) {
    if (onOptionAsked) onOptionAsked(option);
    const auto known = options.find(option);
    if (known != options.end()) *value = known->second;
}
