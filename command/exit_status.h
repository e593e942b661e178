#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "platform/interrupt.h"

namespace headless {

// How the command ends.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // one line on stderr says what, and where
inline constexpr int kWrongUsage = 2;
inline constexpr int kStopped = 130;  // by Ctrl-C, as shells tell it: 128 and its signal's number

inline constexpr char kNoMemory[] = "there is not enough memory";
inline constexpr char kOutputLost[] = "the output cannot be written";

// Of a comparison.
inline constexpr int kDifferent = 1;
inline constexpr int kNotCompared = 2;

// Thrown where a verb cannot go on: the line that the person reads.
class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& line, int status = kFailed)
        : std::runtime_error(line), status_(status) {}
    int Status() const { return status_; }

  private:
    int status_;
};

[[noreturn]] inline void Refuse(const std::string& wrongWords) {
    throw Failure(wrongWords, kWrongUsage);
}

// What is thrown for want of memory has no words for a person.
inline std::string ForPeople(std::string text) {
    const std::string thrown = std::bad_alloc().what();
    const std::size_t place = text.find(thrown);
    return place == std::string::npos ? text : text.replace(place, thrown.size(), kNoMemory);
}

// Gives what the work gives. What libraries throw of files and paths is a refusal, and no fault of
// the program; behind Ctrl-C it is how far they came.
template <class Work>
auto OrRefuse(const Work& work, int status = kFailed) {
    try {
        return work();
    } catch (const std::runtime_error& error) {
        throw Failure(ForPeople(error.what()), platform::Interrupt::IsWanted() ? kStopped : status);
    }
}

// Thrown where a verb has done its work, and its outcome is a status other than 0.
struct Ended {
    int status;
};

}  // namespace headless
