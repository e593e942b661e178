#include "command/long_work.h"

#include <cstdint>
#include <filesystem>
#include <memory>

#include "command/exit_status.h"
#include "command/output.h"
#include "platform/narrow_path.h"
#include "platform/process.h"

namespace headless {

void EndIfStopped(const std::string& howFar) {
    if (platform::Interrupt::IsWanted()) throw Failure(howFar, kStopped);
}

LongWork::LongWork(const std::string& title, std::size_t steps, const std::string& noun)
    : title_(title),
      steps_(steps),
      noun_(noun),
      line_(platform::IsErrorStreamATerminal(), title,
            noun.empty() ? platform::ProgressIn::kPercent : platform::ProgressIn::kSteps, steps) {}

void LongWork::Advance() {
    StepDone()();
    if (done_ < steps_) End();
}

std::function<bool()> LongWork::StepDone() {
    return [this] { return line_.AdvanceTo(++done_); };
}

void LongWork::End() const {
    constexpr std::size_t kHundred = 100;
    const std::size_t percent = steps_ == 0 ? kHundred : kHundred * done_ / steps_;
    EndIfStopped(title_ + " ended after " +
                 (noun_.empty() ? std::to_string(percent) + " %"
                                : std::to_string(done_) + " of " + Counted(steps_, noun_)));
}

bool FileLine::Tell(const FileProgress& progress) {
    constexpr std::uint64_t kSteps = 1000;
    const std::string title = std::string(progress.doing) + ' ' +
                              platform::ToNarrow(platform::FromNarrow(progress.path).filename());
    if (!line_ || title != title_)
        line_.reset(), line_.emplace(platform::IsErrorStreamATerminal(), title_ = title,
                                     platform::ProgressIn::kPercent, kSteps);
    const bool isOver = progress.done >= progress.whole;
    const bool goesOn = line_->AdvanceTo(isOver ? kSteps : kSteps * progress.done / progress.whole);
    if (isOver) End();
    return goesOn;
}

ToldSceneFiles::ToldSceneFiles() {
    Session::OnProgress([this](const FileProgress& file) { return line_.Tell(file); });
}

ToldSceneFiles::~ToldSceneFiles() {
    Session::OnProgress({});
}

std::function<bool(std::uint64_t, std::uint64_t)> ProgressOn(const char* doing,
                                                             const std::string& path) {
    struct Told {
        platform::Interrupt interrupt;
        FileLine line;
    };
    return [doing, path, told = std::make_shared<Told>()](std::uint64_t done, std::uint64_t whole) {
        return told->line.Tell({doing, path, done, whole});
    };
}

}  // namespace headless
