#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/guests.h"
#include "recorder/recorder.h"
#include "recorder/stream/stream.h"
#include "recorder/tape/tape_writer.h"
#include "recorder/watch/watch.h"

namespace headless {

// Sits between the plug-in and the Core of a stage, with a tape, a watch or both. At its end it
// tells on stderr what the watch has found. It outlives the seat and the session.
class StageRecorder final : public CoreBetween {
  public:
    static bool IsWanted(const GuestChoice& guests) {
        return !guests.tape.empty() || guests.watch != WatchChoice::kNo;
    }

    // Throws a Failure where the tape cannot be had.
    explicit StageRecorder(const GuestChoice& guests);
    ~StageRecorder();
    StageRecorder(const StageRecorder&) = delete;
    StageRecorder& operator=(const StageRecorder&) = delete;

    // Before the Core is attached: what sessions call it.
    void NameCore(const std::string& library);

    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) override;
    void Detach(CoreInterface* core, const DetachCore& detach) override;

    // A word of recorder/stream/notes.h. Nothing before a Core was attached first.
    void Note(std::string_view word, std::string_view about) noexcept;

    // The same of a scene's file, which travels along if that is asked for and it was read.
    void NoteScene(std::string_view word, const std::string& scene);

    // Why records do not come onto the tape any more, or were lost, each once; usually none.
    std::vector<std::string> TakeTroubles();

    // What the watch has found until now. What is only known at the end comes with that.
    std::vector<recorder::Finding> Findings() const;

  private:
    const GuestChoice guests_;
    recorder::Stream stream_;
    std::unique_ptr<recorder::TapeWriter> tape_;
    std::optional<recorder::Watch> watch_;
    std::unique_ptr<recorder::Recorder> recorder_;
    bool hasBegun_ = false;
    std::string toldStop_;
    std::uint64_t toldLost_ = 0;
    bool isBlindTold_ = false;
};

// Whether a watch that was to be strict has found anything in this process.
bool HasStrictFinding();

// What is told of a finding, ahead of its line.
inline constexpr char kWatchFound[] = "Watch: ";

// The same for a program.
nlohmann::ordered_json JsonOf(const recorder::Finding& finding);

}  // namespace headless
