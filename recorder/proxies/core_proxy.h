#pragma once

#include "recorder/proxies/messages.h"
#include "tvl/core_interface.h"

namespace recorder {

// Stands for the Core, from the moment at which it is there.
class CoreProxy final : public CoreInterface {
  public:
    CoreProxy(Scribe& scribe, MessageNet& messages)
        : scribe_(scribe), messages_(messages), id_(scribe.NewId(ObjectKind::kCore)) {}
    CoreProxy(const CoreProxy&) = delete;
    CoreProxy& operator=(const CoreProxy&) = delete;

    ObjectId Id() const { return id_; }
    CoreInterface* Behind() const { return real_; }
    void StandFor(CoreInterface* real) { real_ = real; }

    XMLNode GetCoreState() override;
    void SetCoreState(XMLNode state) override;
    void ResetCore() override;
    void ShowCore(TVL::WindowHandle mainWindow) override;
    void NotifyTimeChanged(double seconds) override;
    bool IsCoreRunning() override;
    void StopCore() override;
    TVL::Util::MessageNode* GetOptionNode(int option, int unused) override;
    void BindOption(int option, int unused) override;
    void GetOptionValue(int option, bool* value) override;

  private:
    template <Operation kOperation, auto kMethod, class... Values>
    auto Pass(Values&&... values) {
        return scribe_.Pass<kOperation, kMethod>(id_, real_, std::forward<Values>(values)...);
    }

    Scribe& scribe_;
    MessageNet& messages_;
    ObjectId id_;
    CoreInterface* real_ = nullptr;
};

}  // namespace recorder
