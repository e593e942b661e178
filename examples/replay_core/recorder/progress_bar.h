#pragma once

#include <cstddef>
#include <string>

namespace replay {

// A line on stderr that fills up as the work goes on; nothing at all unless it is wanted.
class ProgressBar {
  public:
    ProgressBar(bool isShown, std::string title, std::size_t steps);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Advance();

  private:
    void Draw() const;

    bool isShown_;
    std::string title_;
    std::size_t steps_;
    std::size_t done_ = 0;
};

}  // namespace replay
