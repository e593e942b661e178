#pragma once

#include <cstddef>
#include <string>

namespace headless {

// How far a long piece of work has come, as a bar on a line of stderr that is rewritten at every
// step. Not shown, it is silent.
class ProgressLine {
  public:
    ProgressLine(bool isShown, std::string title, std::size_t steps);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Advance();

  private:
    void Draw() const;

    bool isShown_;
    std::string title_;
    std::size_t steps_;
    std::size_t done_ = 0;
};

}  // namespace headless
