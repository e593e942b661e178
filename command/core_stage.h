#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/guests.h"
#include "command/long_work.h"
#include "command/stage_recorder.h"
#include "command/trace_tail.h"
#include "command/written_files.h"
#include "headless/core_seat.h"
#include "headless/session.h"
#include "replay/report.h"

namespace headless {

// The variables of replay/request.h that make up a request, with their values.
using CoreRequest = std::map<std::string, std::string>;

// Each value on a line of its own, as the Core reads lists. A value that holds a line end cannot be
// told to it.
std::string Lines(const std::vector<std::string>& values);

// What happened on a stage.
struct StageNews {
    std::vector<std::string> boxes;       // the texts of message boxes
    std::vector<std::string> complaints;  // what did not go well with files and in the trace
    std::vector<std::string> breaches;    // what the guests asked of the host that they must not
    std::vector<TraceLine> trace;
};

// A host that has started with the plug-in beside the program, and the Core that is chosen. What
// cannot be done is thrown as a Failure, also that a Core is not there which was named.
class CoreStage {
  public:
    explicit CoreStage(const GuestChoice& guests, const SessionSettings& settings = {});

    // What nobody asked for until now, and what came of the shutdown, is told on stderr.
    ~CoreStage();
    CoreStage(const CoreStage&) = delete;
    CoreStage& operator=(const CoreStage&) = delete;

    Session& Host() { return session_; }

    bool WantsCore() const { return seat_.has_value(); }
    bool HasCore() const { return seat_ && seat_->IsAttached(); }
    bool HasReplayCore() const { return HasCore() && isReplayCore_; }

    // The seat of a Core that is wanted.
    CoreSeat& Seat() { return *seat_; }

    // Throws what kept the Core away, if it is not there; and that it is another one than the
    // replay Core, which alone knows requests.
    void NeedCore() const;
    void NeedReplayCore() const;

    // Presses the button that has the replay Core do its work. Variables that the request does not
    // hold are taken away. The Core ends its work when Ctrl-C is pressed, and that is thrown as a
    // Failure of its own status.
    replay::Report AskCore(CoreRequest request);

    // The same, for a file that the Core writes; what is thrown names it by the name that it gets.
    replay::Report AskCoreForFile(CoreRequest request, const CoreFile& file);

    // Presses the Core's button that turns all controllers of its nodes into the host's own, and
    // throws the first node on which one is left.
    void ConvertControllers();

    // What the host does with scenes. Each is noted on a tape, when it is done.
    void Open(const std::string& scene);
    void Save(const std::string& scene);

    // Also behind Ctrl-C, which ends what comes after it: nothing else has what is saved.
    void SaveWhole(const std::string& scene);
    void MergeByHost(const std::string& scene);
    void EmptyScene(void (Session::*how)());

    // Tells a tape what it cannot see, by a word of recorder/stream/notes.h: anything, or of a
    // scene file the digest and the path. Nothing without a tape or watch.
    void Note(std::string_view word, std::string_view about) noexcept;
    void NoteScene(std::string_view word, const std::string& scene);

    // A complaint if a tape holds work that was not saved when the host that made it ended; nothing
    // if there is no such file. The tape that a scene may have lies beside it, under its name.
    void TellOfUnsavedWork(const std::string& tape);
    void TellOfTapeBeside(const std::string& scene);

    // What the watch has found; none without one. It is told on stderr at the end in any case.
    std::vector<recorder::Finding> Findings() const;

    // What happened since either was last asked for. All that did not go well, breaches and the
    // want of a Core included, are complaints of the second.
    StageNews TakeNews();
    StageNews TakeNewsInOne();

    // How many blocks are left on the host's heap.
    std::size_t ShutDown();

  private:
    void TakeSeat(const GuestChoice& guests);
    void Start(const std::string& plugin);
    void Take(FileOutcome outcome);

    CoreFile report_{""};
    TraceTail trace_;
    std::optional<StageRecorder> recorder_;
    std::optional<CoreSeat> seat_;
    bool isReplayCore_ = false;
    std::string absence_;  // why the Core was not there at the start, until that is told
    FileLine fileLine_;
    std::vector<std::string> reported_;  // by the replay Core, which traces it as well
    StageNews pending_;
    Session session_;
};

// What the replay Core wrote into its report file. A field that it left out is empty or 0. Nothing
// if the file is absent or empty. Throws a Failure if it cannot be read to its end.
std::optional<replay::Report> ReadReport(const std::string& path);

}  // namespace headless
