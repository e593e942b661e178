#include "platform/progress_line.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "platform/interrupt.h"

namespace platform {
namespace {

using Seconds = std::chrono::duration<double>;

// A line of a terminal of 80 columns holds all of it.
constexpr std::size_t kWidth = 20;
constexpr std::size_t kLongestTitle = 28;

constexpr Seconds kBetweenDrawings{0.1};
constexpr Seconds kUntilRateIsKnown{0.4};

// Of `whole` equal parts of the work, those that are done.
std::size_t Share(std::size_t done, std::size_t steps, std::size_t whole) {
    return steps == 0 ? whole : whole * std::min(done, steps) / steps;
}

std::string Shortened(std::string title) {
    constexpr const char* kCut = "...";
    if (title.size() > kLongestTitle) title.replace(kLongestTitle - 3, title.npos, kCut);
    return title;
}

// From the rate so far. Nothing while there is none, or when there is nothing left.
std::string TimeLeft(std::size_t done, std::size_t steps, Seconds passed) {
    constexpr double kMinute = 60;
    constexpr double kMostInSeconds = 90;
    if (done == 0 || done >= steps || passed < kUntilRateIsKnown) return {};
    const double ahead = static_cast<double>(steps - done) / static_cast<double>(done);
    const double seconds = std::ceil(passed.count() * ahead);
    const bool isShort = seconds <= kMostInSeconds;
    const double told = isShort ? seconds : std::round(seconds / kMinute);
    return ", about " + std::to_string(static_cast<long long>(told)) +
           (isShort ? " s left" : " min left");
}

}  // namespace

ProgressLine::ProgressLine(bool isShown, std::string title, ProgressIn told, std::size_t steps,
                           Clock::time_point (*now)())
    : isShown_(isShown),
      title_(Shortened(std::move(title))),
      in_(told),
      steps_(steps),
      now_(now),
      begin_(now()) {
    if (isShown_) Draw();
}

ProgressLine::~ProgressLine() {
    Wipe();
}

bool ProgressLine::Advance() {
    return AdvanceTo(done_ + 1);
}

bool ProgressLine::AdvanceTo(std::size_t done) {
    done_ = done;
    if (isShown_ && now_() - drawn_ >= kBetweenDrawings) Draw();
    return !Interrupt::IsWanted();
}

void ProgressLine::Wipe() {
    if (width_ == 0) return;
    std::fprintf(stderr, "\r%*s\r", static_cast<int>(std::exchange(width_, 0)), "");
    std::fflush(stderr);
}

void ProgressLine::Draw() {
    drawn_ = now_();
    const std::string text = Text(drawn_);
    std::fprintf(stderr, "\r%-*s", static_cast<int>(width_), text.c_str());
    std::fflush(stderr);
    width_ = std::max(width_, text.size());
}

std::string ProgressLine::Text(Clock::time_point now) const {
    std::string bar(Share(done_, steps_, kWidth), '#');
    bar.resize(kWidth, ' ');
    const std::string far = in_ == ProgressIn::kSteps
                                ? std::to_string(done_) + " of " + std::to_string(steps_)
                                : std::to_string(Share(done_, steps_, 100)) + " %";
    return title_ + " [" + bar + "] " + far + TimeLeft(done_, steps_, now - begin_);
}

}  // namespace platform
