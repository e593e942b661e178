#include "recorder/proxies/core_proxy.h"

namespace recorder {

using enum Operation;

XMLNode CoreProxy::GetCoreState() {
    return Pass<CoreInterface_GetCoreState, &CoreInterface::GetCoreState>();
}
void CoreProxy::SetCoreState(XMLNode state) {
    Pass<CoreInterface_SetCoreState, &CoreInterface::SetCoreState>(std::move(state));
}
void CoreProxy::ResetCore() {
    Pass<CoreInterface_ResetCore, &CoreInterface::ResetCore>();
}
void CoreProxy::ShowCore(TVL::WindowHandle mainWindow) {
    Pass<CoreInterface_ShowCore, &CoreInterface::ShowCore>(mainWindow);
}
void CoreProxy::NotifyTimeChanged(double seconds) {
    Pass<CoreInterface_NotifyTimeChanged, &CoreInterface::NotifyTimeChanged>(seconds);
}
bool CoreProxy::IsCoreRunning() {
    return Pass<CoreInterface_IsCoreRunning, &CoreInterface::IsCoreRunning>();
}
void CoreProxy::StopCore() {
    Pass<CoreInterface_StopCore, &CoreInterface::StopCore>();
}
void CoreProxy::BindOption(int option, int unused) {
    Pass<CoreInterface_BindOption, &CoreInterface::BindOption>(option, unused);
}

TVL::Util::MessageNode* CoreProxy::GetOptionNode(int option, int unused) {
    TVL::Util::MessageNode* node = nullptr;
    const auto make = [&] {
        node = messages_.Across(real_->GetOptionNode(option, unused), ObjectKind::kCoreMessageNode);
        return messages_.IdOf(node);
    };
    scribe_.Record<CoreInterface_GetOptionNode>(id_, make, option, unused);
    return node;
}

void CoreProxy::GetOptionValue(int option, bool* value) {
    const auto make = [&] {
        real_->GetOptionValue(option, value);
        return value && *value;
    };
    scribe_.Record<CoreInterface_GetOptionValue>(id_, make, option, value && *value);
}

}  // namespace recorder
