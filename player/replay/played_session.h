#pragma once

#include <optional>
#include <set>
#include <string>

#include "player/live_objects.h"
#include "player/perform.h"
#include "player/replay/replay_scenes.h"
#include "recorder/tape/read_tape.h"

namespace player {

// What was expected, or came: a call, an answer, what was thrown, or else something in words alone.
struct Told {
    RecordKind kind = RecordKind::kNote;
    Operation operation{};
    std::vector<std::uint64_t> values;
    std::string words;
};

// Where the two came apart, or why they cannot be held against each other any further.
struct Verdict {
    bool differs = false;   // else it cannot be told
    std::size_t place = 0;  // of the call among the session's records; one behind the last is none
    Told expected;
    Told came;  // or why it cannot be told
};

// The Core of one session of a tape. Calls that the adaptor makes must be those of the tape, and
// are answered as there; the calls that the Core made inside them are made once more, and must be
// answered as there. From the first difference on it answers 0 and nothing, does nothing of its
// own, and gives back what it placed when it is detached.
class PlayedSession final : public PlayedCore {
  public:
    PlayedSession(const recorder::TapeSession& session, ReplayScenes& scenes,
                  const recorder::TapeProgress& progress);

    CoreInterface* Attach(TVL::AdaptorInterface& adaptor);
    void Detach(CoreInterface* core);

    std::span<const std::uint64_t> Answer(const Record& call) override;
    void Broadcast(ObjectId node, const std::function<void()>& send) override;

    // Between two events of the host's: the record that stands next, a call of the adaptor's or a
    // note, if there is one. The Core's own calls up to there are made.
    const Record* Next();
    std::size_t Place() const { return at_; }  // of that among the session's
    void PassNote() { ++at_; }
    void PassQuestion();

    std::size_t Calls() const { return calls_; }
    LiveObjects& Objects() { return *objects_; }

    const std::optional<Verdict>& Over() const { return verdict_; }
    void CannotTell(std::string why);

    // The host did on the tape what cannot be done here: what differs from here on can come of it.
    void Doubt(std::string why) { doubt_ = std::move(why); }
    void Differ(std::string came) { Differ(Told{RecordKind::kNote, {}, {}, std::move(came)}); }

  private:
    const Record* Peek(bool passesNotes);
    bool IsAtQuestion();
    bool IsIt(const Record& expected, const Record& call);
    std::span<const std::uint64_t> Play(const Record& call);
    bool MakeLink(const Record& call);
    void Make(const Record& call, const std::function<Performed()>& perform);
    Performed PerformHere(const Record& call);
    bool Compare(const Record& call, const Record& end, const Performed& performed);
    void Differ(Told came);
    void Judge(std::size_t place, bool differs, Told expected, Told came);
    void GiveBack();

    const recorder::TapeSession& session_;
    ReplayScenes& scenes_;
    const recorder::TapeProgress& progress_;
    std::optional<LiveObjects> objects_;
    std::set<ObjectId> heardOf_;  // nodes that the Core listens to, as far as the tape tells
    std::size_t at_ = 0;
    std::size_t calls_ = 0;
    int making_ = 0;       // calls of the Core's that are being made
    bool isTorn_ = false;  // the tape ended in the middle
    std::optional<Verdict> verdict_;
    std::string doubt_;
};

}  // namespace player
