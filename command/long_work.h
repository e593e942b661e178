#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "headless/session.h"
#include "platform/interrupt.h"
#include "platform/progress_line.h"

// Work of a verb that a person may have to wait for: it is shown where somebody reads stderr, and
// ends when Ctrl-C is pressed while a platform::Interrupt lives, which each stage has, and each
// file that the Core writes.
namespace headless {

// Throws a Failure with the status of a stopped verb if Ctrl-C was pressed.
void EndIfStopped(const std::string& howFar);

// So many steps of one kind. Of steps that mean something to a person, such as pictures, their
// number is told; without a noun it is how many in a hundred are done.
class LongWork {
  public:
    LongWork(const std::string& title, std::size_t steps, const std::string& noun = "");

    // Another step is done. Throws as EndIfStopped does.
    void Advance();

    // The same for writers that are not to be thrown through: false if they are to give up, after
    // which End throws.
    std::function<bool()> StepDone();
    void End() const;

    // See platform::ProgressLine.
    void Wipe() { line_.Wipe(); }

  private:
    std::string title_;
    std::size_t steps_;
    std::string noun_;
    std::size_t done_ = 0;
    platform::ProgressLine line_;
};

// What a session tells of its scene files, on a line for each.
class FileLine {
  public:
    // False if Ctrl-C was pressed.
    bool Tell(const FileProgress& progress);

    // Where the work broke off, as it does in other hands.
    void End() { line_.reset(); }

  private:
    std::string title_;
    std::optional<platform::ProgressLine> line_;
};

// Tells of scene files that are looked at without a stage, and notes Ctrl-C, while it lives.
class ToldSceneFiles {
  public:
    ToldSceneFiles();
    ~ToldSceneFiles();
    ToldSceneFiles(const ToldSceneFiles&) = delete;
    ToldSceneFiles& operator=(const ToldSceneFiles&) = delete;

  private:
    platform::Interrupt interrupt_;
    FileLine line_;
};

// The same for whoever goes through a file and asks now and then whether to go on, while the
// function lives.
std::function<bool(std::uint64_t done, std::uint64_t whole)> ProgressOn(const char* doing,
                                                                        const std::string& path);

}  // namespace headless
