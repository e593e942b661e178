#include "player/replay/replay.h"

#include <algorithm>

#include "recorder/stream/notes.h"
#include "tvl/ids.h"

namespace player {
namespace {

namespace note = recorder::note;
using recorder::ValueReader;

// Of the scene that the step at a place opened or merged, which is told behind it; empty if it did
// not.
std::string DigestBehind(const recorder::TapeSession& session, std::size_t step) {
    for (std::size_t place = step + 1; place < session.records.size(); ++place) {
        const auto [word, about] = recorder::NoteOf(session.records[place]);
        if (word == note::kStep) break;
        if (word == note::kOpened || word == note::kMerged)
            return std::string(recorder::SceneOf(about).digest);
    }
    return {};
}

// Whether the Core heard of another scene behind the step, as on a tape that breaks off there.
bool IsSceneBehind(const recorder::TapeSession& session, std::size_t step) {
    for (std::size_t place = step + 1; place < session.records.size(); ++place) {
        const Record& record = session.records[place];
        if (record.head.kind == RecordKind::kNote) break;
        if (record.Is(RecordKind::kCall, Operation::CoreInterface_ResetCore) ||
            record.Is(RecordKind::kCall, Operation::CoreInterface_SetCoreState))
            return true;
    }
    return false;
}

constexpr char kAttach[] = "attach";

// A Core that leaves by the panel is asked for its state ahead of that, and the next one is given
// it.
bool LeavesState(const recorder::TapeSession& session) {
    for (auto record = session.records.rbegin(); record != session.records.rend(); ++record) {
        if (record->head.kind != RecordKind::kCall || record->head.nesting > 0) continue;
        const Operation operation = record->head.operation;
        if (operation == Operation::Routine_detach || operation == Operation::CUndo_Release)
            continue;
        return operation == Operation::CExtendable_HandleExtension &&
               ValueReader(*record).Whole() == TVL::kSceneBeingSaved;
    }
    return false;
}

bool IsGivenState(const recorder::TapeSession& session) {
    for (const Record& record : session.records) {
        const std::string_view word = recorder::NoteOf(record).word;
        if (!word.empty() && word != note::kSettings) return false;
        if (record.Is(RecordKind::kCall, Operation::CoreInterface_SetCoreState)) return true;
    }
    return false;
}

// Whether a session was in the same host as the one before it, whose Core had left.
bool IsContinued(const recorder::TapeContents& tape, std::size_t session) {
    if (session == 0 || session >= tape.sessions.size()) return false;
    const recorder::TapeSession& before = tape.sessions[session - 1];
    if (!before.isClosed) return false;
    const bool endsInStep =
        !before.records.empty() && recorder::NoteOf(before.records.back()).word == note::kStep;
    if (endsInStep) return true;
    return LeavesState(before) && IsGivenState(tape.sessions[session]);
}

}  // namespace

Replay::Replay(const recorder::TapeContents& tape, std::size_t first, ReplayScenes& scenes,
               recorder::TapeProgress progress)
    : tape_(tape), scenes_(scenes), progress_(std::move(progress)), first_(first), end_(first + 1) {
    while (IsContinued(tape_, end_))
        ++end_;
}

CoreInterface* Replay::Attach(TVL::AdaptorInterface* adaptor, const AttachCore&) {
    const std::size_t next = first_ + played_.size();
    if (!adaptor || next >= end_) return nullptr;
    const recorder::TapeSession& session = tape_.sessions[next];
    played_.push_back(std::make_unique<PlayedSession>(session, scenes_, progress_));
    causes_.push_back(std::make_unique<Causes>(session));
    return played_.back()->Attach(*adaptor);
}

void Replay::Detach(CoreInterface* core, const DetachCore&) {
    Session()->Detach(core);
}

const Verdict* Replay::Over() const {
    for (const auto& session : played_)
        if (session->Over()) return &*session->Over();
    return nullptr;
}

std::size_t Replay::Calls() const {
    std::size_t calls = 0;
    for (const auto& session : played_)
        calls += session->Calls();
    return calls;
}

std::optional<Replay::Step> Replay::Give(Step step) {
    given_ = std::move(step);
    givenAt_ = Session()->Place();
    givenIn_ = played_.size();
    ++steps_;
    return given_;
}

bool Replay::HasMovedOn() {
    return played_.size() > givenIn_ || Session()->Place() > givenAt_;
}

std::optional<Replay::Step> Replay::NextStep() {
    if (!Session()) return std::nullopt;
    if (!queue_.empty()) {
        return Give(TakeQueued());
    }
    while (!Over()) {
        const Record* const next = Session()->Next();
        if (!next) break;
        std::optional<Step> step = next->head.kind == RecordKind::kNote ? Noted(*next) : Inferred();
        if (step) return Give(*std::move(step));
        if (Session()->Over() || Session()->Next() == next) return std::nullopt;
    }
    if (Over() || first_ + played_.size() >= end_) return std::nullopt;
    return Give(Step{.text = kAttach, .isInferred = true});
}

// A step that failed here has failed there, too, if the calls go on as they do there. What was
// expected shows in no call; there it held if the tape tells of another step. What has no words of
// a step any more, as on a tape without names, is not known to have been expected.
std::optional<Replay::Step> Replay::Noted(const Record& record) {
    const auto [word, about] = recorder::NoteOf(record);
    if (word == note::kStep && hasFailed_ && given_.text.starts_with("expect")) {
        Session()->Differ(failure_);
        return std::nullopt;
    }
    const std::size_t place = Session()->Place();
    Session()->PassNote();
    if (word == note::kOwnWork) Session()->Doubt(std::string(about));
    if (word == note::kSaved) {
        const auto [digest, path] = recorder::SceneOf(about);
        scenes_.NoteSaved(std::string(digest), std::string(path));
    }
    if (word != note::kStep) return std::nullopt;
    wasNoted_ = true;
    const recorder::TapeSession& session = tape_.sessions[first_ + played_.size() - 1];
    Step step{.text = std::string(about), .digest = DigestBehind(session, place)};
    step.isWithoutScene = step.digest.empty() && !IsSceneBehind(session, place);
    return step;
}

std::optional<Replay::Step> Replay::Inferred() {
    const Cause cause = causes_.back()->Of(Session()->Place());
    if (cause.isEnd) return std::nullopt;
    if (cause.isNothing) {
        Session()->PassQuestion();
        return std::nullopt;
    }
    if (wasNoted_) {
        Session()->Differ("nothing came of the step \"" + given_.text + '"' +
                          (failure_.empty() ? "" : ", which failed: " + failure_));
        return std::nullopt;
    }
    if (cause.isDeletion) {
        QueueDeletion(cause);
    } else if (cause.steps.empty()) {
        Session()->CannotTell(cause.whyNot);
    } else {
        for (const std::string& text : cause.steps)
            queue_.push_back({.text = text,
                              .digest = cause.digest,
                              .isInferred = true,
                              .isRepeated = cause.isRepeated});
    }
    if (queue_.empty()) return std::nullopt;
    return TakeQueued();
}

Replay::Step Replay::TakeQueued() {
    Step step = std::move(queue_.front());
    queue_.erase(queue_.begin());
    return step;
}

// By the names that the nodes have in the host now.
void Replay::QueueDeletion(const Cause& cause) {
    LiveObjects& objects = Session()->Objects();
    std::set<std::string> names;
    const auto add = [&names](TVL::CoreNode* node) {
        const std::string name = node ? node->GetName() : std::string();
        if (!name.empty()) names.insert(name);
    };
    for (const ObjectId node : cause.nodes)
        add(objects.Find<TVL::CoreNode>(node));
    if (names.empty())
        for (const ObjectId owner : cause.owners)
            for (TVL::CNode* const node :
                 objects.Adaptor().GetNodes(objects.Find<TVL::CoreElement>(owner)))
                add(static_cast<TVL::CoreNode*>(node));
    if (names.empty()) {
        Session()->CannotTell("nodes were deleted, and the tape does not tell which");
        return;
    }
    std::string select = "select";
    for (const std::string& name : names)
        select += ' ' + AsWord(name);
    queue_.push_back({.text = select, .isInferred = true});
    queue_.push_back({.text = "delete", .isInferred = true});
}

bool Replay::WasDone() {
    failure_.clear();
    hasFailed_ = false;
    if (Over() || !given_.isInferred || HasMovedOn() || !queue_.empty()) return false;
    if (given_.isRepeated) return true;
    Session()->Differ("nothing came of the step \"" + given_.text + '"');
    return false;
}

void Replay::Failed(const std::string& why, bool isStep) {
    failure_ = why;
    hasFailed_ = isStep;
    if (given_.isInferred && !Over() && !HasMovedOn())
        Session()->Differ("the step \"" + given_.text + "\" failed: " + why);
}

void Replay::NoScene(const std::string& path) {
    Session()->CannotTell(path +
                          ": there is no such scene, nor one of that digest beside the tape");
}

}  // namespace player
