#include "platform/progress_line.h"

#include <cstdio>
#include <utility>

namespace platform {
namespace {

constexpr std::size_t kWidth = 40;

// Of `whole` equal parts of the work, those that are done.
std::size_t Share(std::size_t done, std::size_t steps, std::size_t whole) {
    return steps == 0 ? whole : whole * done / steps;
}

}  // namespace

ProgressLine::ProgressLine(bool isShown, std::string title, ProgressIn told, std::size_t steps)
    : isShown_(isShown), title_(std::move(title)), in_(told), steps_(steps) {
    if (isShown_) Draw();
}

ProgressLine::~ProgressLine() {
    if (isShown_) std::fputc('\n', stderr);
}

void ProgressLine::Advance() {
    const std::size_t before = Told();
    ++done_;
    if (isShown_ && Told() != before) Draw();
}

std::size_t ProgressLine::Told() const {
    return in_ == ProgressIn::kSteps ? done_ : Share(done_, steps_, 100);
}

void ProgressLine::Draw() const {
    const std::string bar(Share(done_, steps_, kWidth), '#');
    std::fprintf(stderr, "\r%s [%-*s] ", title_.c_str(), static_cast<int>(kWidth), bar.c_str());
    if (in_ == ProgressIn::kSteps)
        std::fprintf(stderr, "%zu of %zu", done_, steps_);
    else
        std::fprintf(stderr, "%3zu %%", Told());
    std::fflush(stderr);
}

}  // namespace platform
