#include "player/recovery/making_again.h"

#include <algorithm>
#include <cmath>

#include "headless/scene_view.h"
#include "host/time.h"
#include "tvl/ids.h"

namespace player {
namespace {

double TicksInSecond() {
    return static_cast<double>(GetTicksPerFrame()) * GetFrameRate();
}

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string Seconds(double seconds) {
    std::string text = std::to_string(seconds);
    text.resize(text.find('.') + 4);
    return text + " s";
}

bool IsGivenBack(Operation operation) {
    return operation >= Operation::CoreNode_ReleaseHelperSnapshot &&
           operation <= Operation::CoreNode_ReleaseSnapshot;
}

// A helper's snapshot has no time.
double SecondsSaid(const Record& acquire) {
    const bool hasTime = recorder::RowOf(acquire.head.operation).said == "d";
    return hasTime ? recorder::ValueReader(acquire).Number() : 0;
}

}  // namespace

MakingAgain::MakingAgain(const recorder::TapeSession& tape, const MissingWork& work,
                         RecoveryCore& core, headless::Session& session)
    : tape_(tape),
      work_(work),
      core_(core),
      objects_(core.Objects()),
      session_(session),
      nodes_(work, core) {
    BindAdaptor();
    for (const ObjectId id : work.stoppedNodes)
        if (auto* const node = objects_.Find<TVL::CoreNode>(id))
            node->HandleExtension(TVL::kStopRecording, nullptr);
}

void MakingAgain::BindAdaptor() {
    for (const MissingCall& missing : work_.calls) {
        const ObjectId id = tape_.records[missing.record].head.object;
        if (recorder::KindOf(id) != ObjectKind::kAdaptor) continue;
        objects_.Match(id, objects_.IdOf(&objects_.Adaptor()));
        return;
    }
}

// When each node is written to, by its name in the host; what is not to keys is at no time.
std::map<std::string, MakingAgain::Times> MakingAgain::TimesWritten() const {
    std::map<std::string, Times> written;
    for (const MissingCall& missing : work_.calls) {
        const Record& call = tape_.records[missing.record];
        const ObjectId node = missing.Node(call);
        if (!nodes_.IsFound(node)) continue;
        Times& times = written[nodes_.NameOf(node)];
        if (missing.isSample) {
            times.first = std::min(times.first, missing.lent.seconds);
            times.last = std::max(times.last, missing.lent.seconds);
        } else if (call.head.operation == Operation::CoreNode_DeleteAnimationFrom) {
            times.first = std::min(times.first, recorder::ValueReader(call).Number());
            times.last = kNever;
        }
    }
    return written;
}

std::vector<std::string> MakingAgain::Overwritten() const {
    const std::map<std::string, Times> written = TimesWritten();
    std::vector<std::string> lines;
    for (const headless::NodeView& node : headless::Nodes()) {
        const auto times = written.find(node.name);
        if (times == written.end() || node.keys.count == 0) continue;
        const double first = node.keys.first / TicksInSecond();
        const double last = node.keys.last / TicksInSecond();
        if (first > times->second.last || last < times->second.first) continue;
        lines.push_back(Quoted(node.name) + " had keys from " + Seconds(first) + " to " +
                        Seconds(last) + ", of which those from " +
                        Seconds(std::max(first, times->second.first)) + " to " +
                        Seconds(std::min(last, times->second.last)) + " are replaced");
    }
    return lines;
}

void MakingAgain::MakeCalls(const recorder::TapeProgress& progress) {
    constexpr std::size_t kBetween = 1024;
    const std::size_t count = work_.calls.size();
    for (std::size_t done = 0; done < count; ++done) {
        if (progress && done % kBetween == 0 && !progress(done, count))
            throw std::runtime_error("given up after " + std::to_string(done) + " of " +
                                     std::to_string(count) + " calls");
        Make(work_.calls[done]);
    }
    GiveBackLoans();
    SetRecording(false);
    SetTime(work_.seconds);
}

void MakingAgain::GiveBackLoans() {
    for (const auto& [id, lent] : lent_) {
        auto* const node = objects_.Find<TVL::CoreNode>(lent.node);
        if (!node) continue;
        node->ReleaseSnapshot(objects_.Find<TVL::CSnapshot>(id));
        node->ReleaseHelperSnapshot(objects_.Find<TVL::CSnapshot_Helper>(id));
        node->ReleaseLensSnapshot(objects_.Find<TVL::CSnapshot_Lens>(id));
        node->ReleaseMeshSnapshot(objects_.Find<TVL::CSnapshot_Mesh>(id));
        node->ReleaseShapeSnapshot(objects_.Find<TVL::CSnapshot_Shape>(id));
    }
    lent_.clear();
}

void MakingAgain::Make(const MissingCall& missing) {
    const Record& call = tape_.records[missing.record];
    if (!LendAgain(missing, call) || !IsThere(call.head.object)) {
        if (missing.isChange)
            Lose("on " + Quoted(nodes_.NameOf(missing.Node(call))) + ", which is not in the scene",
                 call);
        return;
    }
    if (!AreObjectsThere(call)) return;
    Prepare(missing);
    if (call.head.operation == Operation::CNode_ReleaseNode)
        nodes_.Ends(recorder::ValueReader(call).Object());
    if (call.head.operation == Operation::CoreNode_Destroy ||
        call.head.operation == Operation::CoreNode_Delete)
        nodes_.Ends(call.head.object);
    const Performed performed = Perform(call, objects_, tape_);
    if (performed.thrown) return Lose("threw: " + *performed.thrown, call);
    SeeAnswer(missing, call, performed);
    SeeRecording(call, performed);
    if (call.head.operation == Operation::AdaptorInterface_MergeModels) nodes_.Find();
}

// The host as it stood ahead of the call on the tape.
void MakingAgain::Prepare(const MissingCall& missing) {
    SetTime(missing.seconds);
    SetRecording(missing.isRecording);
    SetOptions(missing);
}

// The adaptor would cut what is a hair below a tick.
void MakingAgain::SetTime(std::optional<double> seconds) {
    if (seconds && objects_.Adaptor().GetCurrentTime() != *seconds)
        session_.SetTime(static_cast<TimeValue>(std::lround(*seconds * TicksInSecond())));
}

void MakingAgain::SetRecording(bool isRecording) {
    if (isRecording && recordings_ == 0) {
        objects_.Adaptor().BeginRecordingUnkeyed({});
        recordings_ = 1;
    }
    for (; !isRecording && recordings_ > 0; --recordings_)
        objects_.Adaptor().EndRecording();
}

// What the adaptor asked the Core for in the call.
void MakingAgain::SetOptions(const MissingCall& missing) {
    const std::size_t end = missing.answer.value_or(tape_.records.size());
    std::map<std::uint64_t, int> asked;
    for (std::size_t index = missing.record + 1; index < end; ++index) {
        const Record& record = tape_.records[index];
        if (record.head.operation != Operation::CoreInterface_GetOptionValue) continue;
        if (record.head.kind == RecordKind::kCall)
            asked[record.head.call] = recorder::ValueReader(record).Whole();
        else if (record.head.kind == RecordKind::kAnswer && asked.contains(record.head.call))
            core_.SetOption(asked[record.head.call], recorder::ValueReader(record).Truth());
    }
}

bool MakingAgain::IsThere(ObjectId id) {
    switch (recorder::KindOf(id)) {
        case ObjectKind::kAdaptor:
            return true;
        case ObjectKind::kNode:
            return objects_.Find<TVL::CoreNode>(id) != nullptr;
        default:
            return lent_.contains(id);
    }
}

ObjectId MakingAgain::Acquire(TVL::CoreNode& node, ObjectKind kind, double seconds) {
    switch (kind) {
        case ObjectKind::kSnapshot:
            return objects_.IdOf(node.AcquireSnapshot(seconds));
        case ObjectKind::kHelperSnapshot:
            return objects_.IdOf(node.AcquireHelperSnapshot());
        case ObjectKind::kLensSnapshot:
            return objects_.IdOf(node.AcquireLensSnapshot(seconds));
        case ObjectKind::kMeshSnapshot:
            return objects_.IdOf(node.AcquireMeshSnapshot(seconds));
        default:
            return objects_.IdOf(node.AcquireShapeSnapshot(seconds));
    }
}

// A snapshot that was lent ahead of the base, or in a group that does not come back.
bool MakingAgain::LendAgain(const MissingCall& missing, const Record& call) {
    const ObjectId id = call.head.object;
    if (!recorder::IsSnapshot(recorder::KindOf(id))) return true;
    const auto lent = lent_.find(id);
    if (lent != lent_.end() && lent->second.seconds == missing.lent.seconds) return true;
    auto* const node = objects_.Find<TVL::CoreNode>(missing.lent.node);
    if (!node) return false;
    const ObjectId here = Acquire(*node, recorder::KindOf(id), missing.lent.seconds);
    if (here == 0 || !objects_.Match(id, here)) return false;
    lent_[id] = missing.lent;
    return true;
}

// A call with null in the place of what was there would do something else; but what is made
// without its parent is better than nothing.
bool MakingAgain::AreObjectsThere(const Record& call) {
    recorder::ValueReader said(call);
    bool areThere = true;
    for (const char letter : recorder::RowOf(call.head.operation).said) {
        const auto value = said.Skip(letter);
        const bool isObject = letter == 'o' || (letter == 'x' && value.front() == 'o');
        const ObjectId id = isObject ? value.back() : 0;
        const ObjectKind kind = recorder::KindOf(id);
        if (id == 0 || (kind != ObjectKind::kNode && !recorder::IsSnapshot(kind)) || IsThere(id))
            continue;
        if (IsGivenBack(call.head.operation)) return false;  // what was never lent here
        Lose("without " + Quoted(nodes_.NameOf(id)) + ", which is not in the scene", call);
        areThere = recorder::CreatesNode(call.head.operation);
    }
    return areThere;
}

// What the tape says was given is what has come here, as far as objects go.
void MakingAgain::SeeAnswer(const MissingCall& missing, const Record& call,
                            const Performed& performed) {
    if (!missing.answer || tape_.records[*missing.answer].head.kind != RecordKind::kAnswer) return;
    recorder::ValueReader onTape(tape_.records[*missing.answer]);
    recorder::ValueReader here(performed.values);
    const std::string_view letters = recorder::RowOf(call.head.operation).answered;
    if (letters == "O") return SeeGivenAll(call, onTape.Objects(), here.Objects());
    const bool isObject =
        letters == "o" || (letters == "xx" && onTape.Letter() == 'o' && here.Letter() == 'o');
    if (isObject) SeeGiven(call, onTape.Object(), here.Object());
}

void MakingAgain::SeeGivenAll(const Record& call, const std::vector<ObjectId>& expected,
                              const std::vector<ObjectId>& came) {
    for (std::size_t index = 0; index < expected.size(); ++index)
        if (expected[index] != 0 &&
            (index >= came.size() || !objects_.Match(expected[index], came[index])) &&
            call.head.operation == Operation::AdaptorInterface_MergeModels)
            Lose("brought other nodes than it did", call);
}

void MakingAgain::SeeGiven(const Record& call, ObjectId expected, ObjectId came) {
    if (expected == 0) return;
    if (came == 0)
        Lose("gave nothing", call);
    else if (!objects_.Match(expected, came))
        Lose("gave another one than it did", call);
    else if (recorder::IsSnapshot(recorder::KindOf(expected)))
        lent_[expected] = {call.head.object, SecondsSaid(call)};
    else if (auto* const node = objects_.Find<TVL::CoreNode>(expected))
        nodes_.Name(expected, node->GetName());
}

void MakingAgain::SeeRecording(const Record& call, const Performed& performed) {
    const Operation operation = call.head.operation;
    recorder::ValueReader came(performed.values);
    if (recorder::BeginsRecording(operation)) {
        if (came.Whole() == 0)
            ++recordings_;
        else
            Lose("was refused", call);
    } else if (operation == Operation::AdaptorInterface_EndRecording) {
        if (recordings_ > 0) --recordings_;
    } else if (IsGivenBack(operation)) {
        lent_.erase(recorder::ValueReader(call).Object());
    }
}

void MakingAgain::Lose(const std::string& what, const Record& call) {
    const recorder::OperationRow& row = recorder::RowOf(call.head.operation);
    std::string text(row.name);
    if (recorder::KindOf(call.head.object) == ObjectKind::kNode && !what.starts_with("on "))
        text += " on " + Quoted(nodes_.NameOf(call.head.object));
    Loss& loss = losses_[text + ' ' + what];
    if (loss.count++ == 0) loss.firstCall = call.head.call;
}

std::vector<std::string> MakingAgain::Lost() const {
    std::vector<std::string> lines;
    for (const auto& [what, loss] : losses_)
        lines.push_back(what + " (call " + std::to_string(loss.firstCall) +
                        (loss.count > 1 ? ", " + std::to_string(loss.count) + " times)" : ")"));
    return lines;
}

}  // namespace player
