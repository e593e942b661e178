#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "platform/platform_api.h"

namespace platform {

// In what the progress of a work is told: how many of its steps are done, or how many in a hundred.
enum class ProgressIn { kSteps, kPercent };

// How far a long piece of work has come, and how long it will take: a bar on a line of stderr,
// which is rewritten a few times a second, and wiped when the work ends, also halfway. Not shown,
// it is silent. Whatever else goes to the terminal while it lives wants a Wipe before.
class PLATFORM_API ProgressLine {
  public:
    using Clock = std::chrono::steady_clock;

    ProgressLine(bool isShown, std::string title, ProgressIn told, std::size_t steps,
                 Clock::time_point (*now)() = &Clock::now);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Another step is done, or so many of them are. False: the work is to be given up, since
    // somebody pressed Ctrl-C (see Interrupt).
    bool Advance();
    bool AdvanceTo(std::size_t done);

    // Until it is next rewritten.
    void Wipe();

  private:
    void Draw();
    std::string Text(Clock::time_point now) const;

    bool isShown_;
    std::string title_;
    ProgressIn in_;
    std::size_t steps_;
    Clock::time_point (*now_)();
    Clock::time_point begin_;
    Clock::time_point drawn_;
    std::size_t done_ = 0;
    std::size_t width_ = 0;  // of what stands on the line
};

}  // namespace platform
