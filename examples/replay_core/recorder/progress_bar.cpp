#include "replay_core/recorder/progress_bar.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace replay {
namespace {

constexpr std::size_t kWidth = 40;

std::size_t Share(std::size_t done, std::size_t steps, std::size_t whole) {
    return static_cast<std::size_t>(static_cast<double>(done) / static_cast<double>(steps) *
                                    static_cast<double>(whole));
}

}  // namespace

ProgressBar::ProgressBar(bool isShown, std::string title, std::size_t steps)
    : isShown_(isShown), title_(std::move(title)), steps_(std::max<std::size_t>(steps, 1)) {
    if (isShown_) Draw();
}

ProgressBar::~ProgressBar() {
    if (isShown_) std::fputc('\n', stderr);
}

void ProgressBar::Advance() {
    const std::size_t before = Share(done_, steps_, 100);
    ++done_;
    if (isShown_ && Share(done_, steps_, 100) != before) Draw();
}

void ProgressBar::Draw() const {
    const std::string bar(Share(done_, steps_, kWidth), '#');
    std::fprintf(stderr, "\r%s [%-*s] %3zu %%", title_.c_str(), static_cast<int>(kWidth),
                 bar.c_str(), Share(done_, steps_, 100));
    std::fflush(stderr);
}

}  // namespace replay
