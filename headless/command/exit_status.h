#pragma once

#include <stdexcept>

namespace headless {

// How the command ends.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // one line on stderr says what, and where
inline constexpr int kWrongUsage = 2;

// Thrown where a verb cannot go on: the line that the person reads.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace headless
