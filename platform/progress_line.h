#pragma once

#include <cstddef>
#include <string>

#include "platform/platform_api.h"

namespace platform {

// In what the progress of a work is told: how many of its steps are done, or how many in a hundred.
enum class ProgressIn { kSteps, kPercent };

// How far a long piece of work has come, as a bar on a line of stderr that is rewritten whenever
// what it tells has changed. Not shown, it is silent.
class PLATFORM_API ProgressLine {
  public:
    ProgressLine(bool isShown, std::string title, ProgressIn told, std::size_t steps);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Advance();

  private:
    std::size_t Told() const;
    void Draw() const;

    bool isShown_;
    std::string title_;
    ProgressIn in_;
    std::size_t steps_;
    std::size_t done_ = 0;
};

}  // namespace platform
