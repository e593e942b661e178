#pragma once

#include "tests/support/play/play.h"

// A long life of host, user and Core, step by step, beside a model that says after each what must
// be there. A life is a row of bytes, so many for each step: the first choose the step, the others
// what it works on. The same bytes are the same life, and any of its steps can be left out.
namespace soak {

constexpr std::size_t kStepBytes = 24;

// What the user does, on a Soak, or an act of the Core's.
const play::Act& StepOf(std::string_view bytes);

// All that undo brings back. The order of the adaptor's list and the cached keys are no part of it.
struct Look {
    std::uint64_t scene = 0;                            // digest
    std::vector<std::tuple<int, std::uint32_t>> nodes;  // plug-in and handle, ascending
    int value = 0;                                      // the Core's own
    bool operator==(const Look&) const = default;
};

// What was there at each depth of the undo stack; nothing where nobody has looked yet.
class History {
  public:
    // What happened since the last call, or the construction.
    struct Since {
        bool inHold = false;        // a hold was open at the end of some step
        bool redone = false;        // a higher depth is none of new steps
        bool leftNoRecord = false;  // older records may not fit any more
    };

    // A step has ended with no hold open. The result is empty, or says what is not as it must be.
    std::string Follow(const Look& now, std::size_t depth, const Since& since);

  private:
    void Forget(const Look& now, std::size_t depth);
    void Grow(const Look& now, std::size_t depth);

    // By depth, those that can be redone behind the present one. Nothing is to be learned of those
    // ahead of the oldest.
    std::vector<std::optional<Look>> states_{1};
    std::size_t oldest_ = 0;
    std::size_t depth_ = 0;
    Look present_;
};

class Soak final : public play::Play {
  public:
    explicit Soak(bool isRecorded);

    // Plays one step of kStepBytes; what does not hold after it.
    play::Faults Step(std::string_view bytes);

    // Gives everything back; what does not hold then.
    play::Faults Rest();

    // For the steps.

    Look Present();
    void Follow();                     // compares with the model what has become of undo up to here
    const play::Act* armed = nullptr;  // done at the Core's next moment
    int wait = 0;                      // moments that pass before that
    History::Since since;

  private:
    History history_;
};

}  // namespace soak
