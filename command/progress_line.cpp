#include "command/progress_line.h"

#include <cstdio>
#include <utility>

namespace headless {
namespace {

constexpr std::size_t kWidth = 40;

}  // namespace

ProgressLine::ProgressLine(bool isShown, std::string title, std::size_t steps)
    : isShown_(isShown), title_(std::move(title)), steps_(steps) {
    if (isShown_) Draw();
}

ProgressLine::~ProgressLine() {
    if (isShown_) std::fputc('\n', stderr);
}

void ProgressLine::Advance() {
    ++done_;
    if (isShown_) Draw();
}

void ProgressLine::Draw() const {
    const std::string bar(steps_ == 0 ? kWidth : kWidth * done_ / steps_, '#');
    std::fprintf(stderr, "\r%s [%-*s] %zu of %zu", title_.c_str(), static_cast<int>(kWidth),
                 bar.c_str(), done_, steps_);
    std::fflush(stderr);
}

}  // namespace headless
