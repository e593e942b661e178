#include "headless/hold/undo_stream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

#include "headless/breaches/breach_book.h"
#include "headless/hold/graveyard.h"
#include "host/hold.h"

using headless::UndoStream;

Hold theHold;

RestoreObj::~RestoreObj() = default;
int RestoreObj::Size() {
    return 1;
}
void RestoreObj::EndHold() {}
HostString RestoreObj::Description() {
    return "---";
}

void Hold::Begin() {
    headless::ExpectHost("Hold::Begin");
    UndoStream::Get().Begin();
}
void Hold::Accept(const char* label) {
    headless::ExpectHost("Hold::Accept");
    UndoStream::Get().Accept(label);
}
void Hold::Cancel() {
    headless::ExpectHost("Hold::Cancel");
    UndoStream::Get().Cancel();
}
void Hold::Put(RestoreObj* record) {
    headless::ExpectHost("Hold::Put");
    UndoStream::Get().Put(record);
}
bool Hold::Holding() const {
    return UndoStream::Get().Holding();
}
bool Hold::RestoreOrRedoing() const {
    return UndoStream::Get().RestoreOrRedoing();
}

namespace headless {
namespace {

constexpr const char* kRunning = "a step is being undone, redone or cancelled";

// A step for whose label there is no memory goes without.
std::string LabelOf(const char* label) noexcept {
    try {
        return label != nullptr ? label : "";
    } catch (...) {
        return {};
    }
}

// The records of a long step are more than the caches hold, and each is met once: while one runs,
// the one that is due so much later is on its way. Few take more than two lines of a cache.
constexpr std::ptrdiff_t kAhead = 24;
constexpr std::size_t kCacheLine = 64;

void Fetch(const RestoreObj* record) {
    __builtin_prefetch(record);
    // By its number: where the record is shorter, the next line is another's.
    const auto address = reinterpret_cast<std::uintptr_t>(record);
    __builtin_prefetch(reinterpret_cast<const void*>(address + kCacheLine));
}

class FlipRecord final : public RestoreObj {
  public:
    explicit FlipRecord(std::function<void()> flip) : flip_(std::move(flip)) {}

    void Restore(int) override { flip_(); }
    void Redo() override { flip_(); }

  private:
    std::function<void()> flip_;
};

// Never destroyed: records of other modules must not be run while the process ends.
union LastingStream {
    constexpr LastingStream() : stream() {}
    LastingStream(const LastingStream&) = delete;
    LastingStream& operator=(const LastingStream&) = delete;
    ~LastingStream() {}
    UndoStream stream;
};
constinit LastingStream lasting;

}  // namespace

UndoStream& UndoStream::Get() {
    return lasting.stream;
}

// Every record is met, also when one of them throws.
template <class Place, class Act>
FirstThrown UndoStream::Run(const char* what, Place first, Place last, Act act) {
    const HostEvent event(what);
    FirstThrown thrown;
    running_ = true;
    for (; first != last; ++first) {
        if (last - first > kAhead) Fetch(first[kAhead].get());
        thrown.Try([&] { act(**first); });
    }
    running_ = false;
    return thrown;
}

// The step that the hold becomes has its place from here on, so that ending the hold needs no
// memory.
void UndoStream::Begin() {
    if (running_) Book(kRunning, "Hold::Begin");
    if (holding_) Book("a hold is open already", "Hold::Begin");
    if (running_) return;
    if (undo_.size() == undo_.capacity()) undo_.reserve(2 * undo_.size() + 1);
    holding_ = true;
}

bool UndoStream::Takes(const char* call) const {
    if (!holding_) Book(running_ ? kRunning : "no hold is open", call);
    return holding_;
}

void UndoStream::Accept(const char* label) {
    if (!Takes("Hold::Accept")) return;
    FirstThrown thrown;
    for (std::size_t i = 0; i < open_.size(); ++i)
        thrown.Try([&] { open_[i]->EndHold(); });
    holding_ = false;
    if (open_.empty()) {
        Graveyard::Get().Sweep();
    } else {
        std::vector<Step> undone = std::exchange(redo_, {});
        undo_.push_back({LabelOf(label), std::exchange(open_, {})});
        std::reverse(undone.begin(), undone.end());
        Drop(std::move(undone));
    }
    thrown.Rethrow();
}

void UndoStream::Cancel() {
    if (!Takes("Hold::Cancel")) return;
    holding_ = false;
    Records records = std::exchange(open_, {});
    const FirstThrown thrown = Run("a cancel", records.rbegin(), records.rend(),
                                   [](RestoreObj& record) { record.Restore(0); });
    Drop(std::move(records));
    FlushIfAsked();
    thrown.Rethrow();
}

// Most records find room: they are put without a look at anything else.
void UndoStream::Put(RestoreObj* record) {
    if (!holding_ || !record || open_.size() == open_.capacity()) return PutOrDestroy(record);
    open_.emplace_back(record);
}

void UndoStream::PutOrDestroy(RestoreObj* record) {
    std::unique_ptr<RestoreObj> owned(record);
    if (Takes("Hold::Put") && owned) open_.push_back(std::move(owned));
}

// Moves the last step of one stack to the other and has its records run there.
template <class RunAll>
bool UndoStream::Turn(std::vector<Step>& from, std::vector<Step>& to, RunAll runAll) {
    if (from.empty() || holding_ || running_) return false;
    to.push_back({});
    to.back() = std::move(from.back());
    from.pop_back();
    const FirstThrown thrown = runAll(to.back().records);
    FlushIfAsked();
    thrown.Rethrow();
    return true;
}

bool UndoStream::Undo() {
    return Turn(undo_, redo_, [this](const Records& records) {
        return Run("undo", records.rbegin(), records.rend(),
                   [](RestoreObj& record) { record.Restore(1); });
    });
}

bool UndoStream::Redo() {
    return Turn(redo_, undo_, [this](const Records& records) {
        return Run("redo", records.begin(), records.end(),
                   [](RestoreObj& record) { record.Redo(); });
    });
}

void UndoStream::Flush() {
    if (running_) {
        flushWaits_ = true;
        return;
    }
    std::vector<Step> steps = std::exchange(undo_, {});
    std::vector<Step> undone = std::exchange(redo_, {});
    std::move(undone.rbegin(), undone.rend(), std::back_inserter(steps));
    Drop(std::move(steps));
}

std::vector<std::string> UndoStream::LabelsOf(const std::vector<Step>& steps) {
    std::vector<std::string> labels;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        labels.push_back(step->label);
    return labels;
}

bool UndoStream::IsOccupied() const {
    return holding_ || running_ || dropping_ > 0 || !undo_.empty() || !redo_.empty();
}

void UndoStream::FlushIfAsked() {
    if (std::exchange(flushWaits_, false)) Flush();
}

void UndoStream::Drop(Records records) {
    ++dropping_;
    while (!records.empty())
        records.pop_back();
    --dropping_;
    Graveyard::Get().Sweep();
}

void UndoStream::Drop(std::vector<Step> steps) {
    ++dropping_;
    for (; !steps.empty(); steps.pop_back())
        Drop(std::move(steps.back().records));
    --dropping_;
    Graveyard::Get().Sweep();
}

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
