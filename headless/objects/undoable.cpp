#include "headless/objects/undoable.h"

#include <utility>

#include "host/hold.h"

namespace headless {
namespace {

class FlipRecord final : public RestoreObj {
  public:
    explicit FlipRecord(std::function<void()> flip) : flip_(std::move(flip)) {}

    void Restore(int) override { flip_(); }
    void Redo() override { flip_(); }

  private:
    std::function<void()> flip_;
};

}  // namespace

void Undoably(std::function<void()> flip) {
    if (!theHold.Holding()) {
        flip();
        return;
    }
    auto* record = new FlipRecord(std::move(flip));
    theHold.Put(record);
    record->Redo();
}

}  // namespace headless
