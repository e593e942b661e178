#include "player/replay/played_session.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "recorder/stream/notes.h"
#include "recorder/stream/record_writer.h"

namespace player {
namespace {

using recorder::RecordWriter;
using recorder::RowOf;
using recorder::ValueReader;

// What may be another on another machine.
constexpr std::array kNotCompared = {Operation::AdaptorInterface_GetPlatformName,
                                     Operation::AdaptorInterface_GetPlatformVersion,
                                     Operation::AdaptorInterface_GetPlatformWindow};

constexpr std::string_view kNothingCame = "nothing";

constexpr int kDeepest = 200;               // calls of the Core's in one another
constexpr std::size_t kBetweenTold = 1024;  // calls

bool IsEndOf(const Record& record, std::uint64_t call) {
    return record.IsEnd() && record.head.call == call;
}

// A status is 0 or a number that means nothing outside its process.
bool IsStatus(Operation operation) {
    const recorder::OperationRow& row = RowOf(operation);
    return row.className == "AdaptorInterface" && row.answered == "i" && row.name != "GetVersion";
}

Told ToldOf(const Record& record) {
    Told told{record.head.kind, record.head.operation, {}, {}};
    told.values.assign(record.values.begin(), record.values.end());
    return told;
}

Told ToldOf(Operation operation, const Performed& performed) {
    if (!performed.thrown) return {RecordKind::kAnswer, operation, performed.values, {}};
    return {RecordKind::kNote, operation, {}, "thrown: " + *performed.thrown};
}

}  // namespace

PlayedSession::PlayedSession(const recorder::TapeSession& session, ReplayScenes& scenes,
                             const recorder::TapeProgress& progress)
    : session_(session), scenes_(scenes), progress_(progress) {
    if (!session.isWhole) Doubt("not all of this session is on the tape, or it is damaged");
    for (const Record& record : session.records)
        if (record.head.kind == RecordKind::kCall && IsOfListener(record.head.operation))
            heardOf_.insert(ValueReader(record).Object());
}

CoreInterface* PlayedSession::Attach(TVL::AdaptorInterface& adaptor) {
    objects_.emplace(adaptor, *this);
    RecordWriter writer;
    ValueReader answer(Answer(writer.Call(0, Operation::Routine_attach, objects_->IdOf(&adaptor))));
    CoreInterface* const core = objects_->Find<CoreInterface>(answer.Object());
    if (!core) GiveBack();
    return core;
}

void PlayedSession::Detach(CoreInterface* core) {
    RecordWriter writer;
    Answer(writer.Call(0, Operation::Routine_detach, objects_->IdOf(core)));
    GiveBack();
}

// What a Core that went on to its end has given back itself.
void PlayedSession::GiveBack() {
    if (!verdict_ && !isTorn_) return;
    objects_->ReleaseNodes();
    objects_->Adaptor().ClearLog();
    objects_->Adaptor().ClearErrorCode();
}

// The record that stands next, but for what is only told.
const Record* PlayedSession::Peek(bool passesNotes) {
    for (; at_ < session_.records.size(); ++at_) {
        const Record& record = session_.records[at_];
        switch (record.head.kind) {
            case RecordKind::kObject:
                if (objects_) objects_->Know(record.head.object, ValueReader(record).Facts().name);
                break;
            case RecordKind::kNote:
                if (!passesNotes) return &record;
                break;
            case RecordKind::kCall:
            case RecordKind::kAnswer:
            case RecordKind::kThrown:
                if (record.head.thread != 0)
                    CannotTell("a call was made on another thread, whose moment is not told");
                return &record;
            default:
                break;
        }
    }
    isTorn_ = !session_.isClosed;
    return nullptr;
}

// Whoever counts keys has the Core asked whether it is running, so that the host can have its own
// reasons at any moment between two events.
bool PlayedSession::IsAtQuestion() {
    const Record* const next = Peek(true);
    return making_ == 0 && next &&
           next->Is(RecordKind::kCall, Operation::CoreInterface_IsCoreRunning);
}

void PlayedSession::PassQuestion() {
    const std::uint64_t call = session_.records[at_].head.call;
    while (const Record* const next = Peek(true)) {
        ++at_;
        if (IsEndOf(*next, call)) break;
    }
}

std::span<const std::uint64_t> PlayedSession::Answer(const Record& call) {
    if (verdict_) return {};
    const bool isQuestion = call.head.operation == Operation::CoreInterface_IsCoreRunning;
    while (!isQuestion && IsAtQuestion())
        PassQuestion();
    const Record* const expected = Peek(true);
    if (isTorn_ || verdict_) return {};
    if (expected && IsIt(*expected, call)) return Play(*expected);
    if (isQuestion && making_ == 0) return {};
    if (IsOfListener(call.head.operation) && !heardOf_.contains(ValueReader(call).Object()))
        return {};
    Differ(ToldOf(call));
    return {};
}

// Which listener it is on the adaptor's side does not know.
bool PlayedSession::IsIt(const Record& expected, const Record& call) {
    const Operation operation = call.head.operation;
    return expected.Is(RecordKind::kCall, operation) &&
           (expected.head.object == call.head.object || IsOfListener(operation)) &&
           Match(RowOf(operation).said, expected.values, call.values, *objects_);
}

// Plays what stands on the tape up to the call's end, and gives its answer.
std::span<const std::uint64_t> PlayedSession::Play(const Record& call) {
    ++at_;
    ++calls_;
    while (const Record* const next = Peek(true)) {
        if (verdict_) return {};
        if (IsEndOf(*next, call.head.call)) {
            ++at_;
            if (next->head.kind == RecordKind::kThrown)
                throw std::runtime_error(std::string(ValueReader(*next).Text()));
            return next->values;
        }
        if (next->head.kind == RecordKind::kCall && IsOfCore(*next))
            Make(*next, [&] { return PerformHere(*next); });
        else if (!MakeLink(*next))
            Differ(std::string(kNothingCame));
    }
    return {};
}

// The Core had a node of the adaptor's listen to one of its own, or no more, which that one hears
// of. False: it was not that, or nothing came of it.
bool PlayedSession::MakeLink(const Record& call) {
    if (!call.Is(RecordKind::kCall, Operation::MessageNode_Receive)) return false;
    const std::size_t before = at_;
    ValueReader said(call);
    TVL::Util::MessageNode* const listener = objects_->FindMessageNode(said.Object());
    TVL::Util::MessageNode* const node = objects_->FindMessageNode(call.head.object);
    if (!listener || !node) return false;
    const std::int32_t id = said.Whole();
    if (id == TVL::Util::Message::kListening) listener->Listen(node);
    if (id == TVL::Util::Message::kStoppedListening) listener->StopListening(node);
    return verdict_ || at_ > before;
}

// What the living adaptor asks meanwhile is played inside.
void PlayedSession::Make(const Record& call, const std::function<Performed()>& perform) {
    if (making_ == kDeepest) {
        CannotTell("calls are deeper in one another than can be played");
        return;
    }
    if (calls_ % kBetweenTold == 0 && !progress_(at_, session_.records.size())) {
        CannotTell("it was given up");
        return;
    }
    ++at_;
    ++calls_;
    ++making_;
    const Performed performed = perform();
    --making_;
    if (verdict_) return;
    const Record* const end = Peek(true);
    if (!end || verdict_) return;
    if (!IsEndOf(*end, call.head.call)) {
        Differ("the end of " + std::string(RowOf(call.head.operation).name));
        return;
    }
    if (Compare(call, *end, performed)) ++at_;
}

Performed PlayedSession::PerformHere(const Record& call) {
    if (call.head.operation != Operation::AdaptorInterface_MergeModels)
        return Perform(call, *objects_, session_);
    const std::string path(ValueReader(call).Text());
    std::string digest;
    for (std::size_t place = at_; place < session_.records.size(); ++place) {
        const Record& record = session_.records[place];
        if (!digest.empty() || IsEndOf(record, call.head.call)) break;
        const auto [word, about] = recorder::NoteOf(record);
        if (word == recorder::note::kRead) digest = recorder::SceneOf(about).digest;
    }
    const std::string here = scenes_.ToRead(digest, path);
    RecordWriter writer;
    const std::string_view read = here.empty() ? path : here;
    return Perform(writer.Call(call.head.object, call.head.operation, read), *objects_, session_);
}

bool PlayedSession::Compare(const Record& call, const Record& end, const Performed& performed) {
    const Operation operation = call.head.operation;
    const bool isThrown = end.head.kind == RecordKind::kThrown;
    const bool isCompared = std::ranges::find(kNotCompared, operation) == kNotCompared.end();
    bool isSame = isThrown == performed.thrown.has_value();
    if (isSame && !isThrown && isCompared)
        isSame = IsStatus(operation)
                     ? (end.values.front() == 0) == (performed.values.front() == 0)
                     : Match(RowOf(operation).answered, end.values, performed.values, *objects_);
    if (isSame) return true;
    const auto place = std::ranges::find(session_.records, call.head.call,
                                         [](const Record& each) { return each.head.call; });
    Judge(static_cast<std::size_t>(place - session_.records.begin()), true, ToldOf(end),
          ToldOf(operation, performed));
    return false;
}

// Somebody beside the Core pressed its button, which the tape has as a call of the Core's.
void PlayedSession::Broadcast(ObjectId node, const std::function<void()>& send) {
    const Record* const next = verdict_ ? nullptr : Peek(true);
    const bool isIt = next && next->Is(RecordKind::kCall, Operation::MessageNode_Receive) &&
                      IsOfCore(*next) && ValueReader(*next).Object() == node;
    if (!isIt) {
        send();
        return;
    }
    Make(*next, [&] {
        send();
        return Performed();
    });
}

const Record* PlayedSession::Next() {
    while (!verdict_) {
        const Record* const next = Peek(false);
        if (!next || verdict_) return nullptr;
        if (next->head.kind == RecordKind::kNote) return next;
        if (next->head.kind != RecordKind::kCall)
            CannotTell("the tape has the end of a call here whose beginning it has not");
        else if (!IsOfCore(*next))
            return next;
        else
            Make(*next, [&] { return PerformHere(*next); });
    }
    return nullptr;
}

void PlayedSession::Judge(std::size_t place, bool differs, Told expected, Told came) {
    if (verdict_) return;
    if (differs && !doubt_.empty())
        verdict_ = {false, place, {}, {RecordKind::kNote, {}, {}, doubt_}};
    else
        verdict_ = {differs, place, std::move(expected), std::move(came)};
}

// The tape has something else next, or nothing more.
void PlayedSession::Differ(Told came) {
    const Record* const next = Peek(true);
    Judge(at_, true,
          next ? ToldOf(*next) : Told{RecordKind::kNote, {}, {}, "the end of the session"},
          std::move(came));
}

void PlayedSession::CannotTell(std::string why) {
    Judge(at_, false, {}, {RecordKind::kNote, {}, {}, std::move(why)});
}

}  // namespace player
