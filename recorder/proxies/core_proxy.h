#pragma once

#include "recorder/proxies/messages.h"
#include "recorder/proxies/nodes.h"
#include "tvl/core_interface.h"

namespace recorder {

// Stands for the Core, from the moment at which it is there.
class CoreProxy final : public Proxy<CoreInterface> {
  public:
    using enum Operation;

    CoreProxy(Scribe& scribe, MessageNet& messages, Nodes& nodes)
        : Proxy(scribe, scribe.NewId(ObjectKind::kCore), nullptr),
          messages_(messages),
          nodes_(nodes) {}

    void StandFor(CoreInterface* real) { real_ = real; }

    XMLNode GetCoreState() override { return Pass<CoreInterface_GetCoreState>(); }
    void SetCoreState(XMLNode state) override {
        Pass<CoreInterface_SetCoreState>(std::move(state));
    }
    void ResetCore() override {
        nodes_.TellListeners();
        Pass<CoreInterface_ResetCore>();
    }
    void ShowCore(TVL::WindowHandle mainWindow) override {
        Pass<CoreInterface_ShowCore>(mainWindow);
    }
    void NotifyTimeChanged(double seconds) override {
        Pass<CoreInterface_NotifyTimeChanged>(seconds);
    }
    bool IsCoreRunning() override { return Pass<CoreInterface_IsCoreRunning>(); }
    void StopCore() override { Pass<CoreInterface_StopCore>(); }
    void BindOption(int option, int unused) override {
        Pass<CoreInterface_BindOption>(option, unused);
    }

    MessageNode* GetOptionNode(int option, int unused) override {
        MessageNode* node = nullptr;
        const auto make = [&] {
            node = messages_.Across(real_->GetOptionNode(option, unused),
                                    ObjectKind::kCoreMessageNode);
            return messages_.IdOf(node);
        };
        scribe_.Record<CoreInterface_GetOptionNode>(id_, make, option, unused);
        return node;
    }

    void GetOptionValue(int option, bool* value) override {
        const auto make = [&] {
            real_->GetOptionValue(option, value);
            return value && *value;
        };
        scribe_.Record<CoreInterface_GetOptionValue>(id_, make, option, value && *value);
    }

  private:
    MessageNet& messages_;
    Nodes& nodes_;
};

}  // namespace recorder
