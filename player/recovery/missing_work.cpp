#include "player/recovery/missing_work.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <unordered_map>

#include "player/perform.h"
#include "player/recovery/undo_history.h"
#include "recorder/stream/notes.h"
#include "tvl/ids.h"

namespace player {
namespace {

using recorder::ValueReader;
namespace note = recorder::note;

constexpr std::size_t kOutside = 0;  // the group of what was done in none

// What an operation has to do with what is brought back.
enum class Effect {
    kNone,    // of the moment alone: never made again
    kLook,    // asks, or lends and gives back
    kChange,  // the scene
    kSample,  // the same, by a snapshot at its time
};

Effect EffectOf(const Record& call) {
    switch (call.head.operation) {
        case Operation::AdaptorInterface_SetErrorCode:
        case Operation::AdaptorInterface_ClearErrorCode:
        case Operation::AdaptorInterface_SetLog:
        case Operation::AdaptorInterface_ClearLog:
        case Operation::AdaptorInterface_GetPlatformWindow:
        case Operation::AdaptorInterface_BeginUndoGroup:  // all becomes one group
        case Operation::AdaptorInterface_AddUndoChunk:
        case Operation::AdaptorInterface_EndUndoGroup:
        case Operation::AdaptorInterface_CancelUndoGroup:
        case Operation::AdaptorInterface_PerformUndo:
        case Operation::AdaptorInterface_FlushUndoBuffer:
        case Operation::AdaptorInterface_ForceRedraw:
        case Operation::AdaptorInterface_RequestFocus:
        case Operation::AdaptorInterface_RestoreFocus:
        case Operation::AdaptorInterface_GetOptionsPanel:
        case Operation::MessageNode_Receive:
            return Effect::kNone;
        case Operation::AdaptorInterface_CreateLensNode:
        case Operation::AdaptorInterface_CreateHelperNode:
        case Operation::AdaptorInterface_MergeModels:
        case Operation::AdaptorInterface_SetAnimationRange:
        case Operation::AdaptorInterface_BeginRecording:
        case Operation::CNode_Show:
        case Operation::CNode_Hide:
        case Operation::CoreNode_Claim:
        case Operation::CoreNode_SetParent:
        case Operation::CoreNode_DeleteAnimationFrom:
        case Operation::CoreNode_SetName:
        case Operation::CoreNode_Delete:
        case Operation::CoreNode_Clone:
        case Operation::CSnapshot_Helper_SetMesh:
        case Operation::CSnapshot_Helper_SetColor:
        case Operation::CSnapshot_Helper_SetWireframe:
        case Operation::CSnapshot_Helper_SetBackfaceCull:
        case Operation::CSnapshot_Mesh_SetMesh:
            return Effect::kChange;
        case Operation::CSnapshot_SetLocalTransform:
        case Operation::CSnapshot_SetWorldTransform:
        case Operation::CSnapshot_Lens_SetFieldOfView:
        case Operation::CSnapshot_Lens_SetFieldOfViewType:
        case Operation::CSnapshot_Lens_SetTargetDistance:
            return Effect::kSample;
        case Operation::CExtendable_HandleExtension: {
            const int extension = ValueReader(call).Whole();
            const bool isChange = extension == TVL::kStopRecording ||
                                  extension == TVL::kCloneBelow ||
                                  extension == TVL::kUseHostController;
            return isChange ? Effect::kChange : Effect::kLook;
        }
        default:
            return Effect::kLook;
    }
}

bool MakesSceneNode(Operation operation) {
    return operation == Operation::AdaptorInterface_CreateLensNode ||
           operation == Operation::AdaptorInterface_CreateHelperNode ||
           operation == Operation::CoreNode_Clone;
}

// A word of a step that the host tells of, and the number behind it.
struct StepNote {
    std::string_view word;
    std::size_t count = 1;
};
StepNote StepOf(std::string_view text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    StepNote step{text.substr(0, end)};
    const std::string_view rest = text.substr(std::min(end + 1, text.size()));
    std::from_chars(rest.data(), rest.data() + rest.size(), step.count);
    return step;
}

// Steps by which a person changes the scene: these make one step of the host's, and those do not,
// or nobody knows how many.
bool IsOneStep(std::string_view word) {
    return word == "delete" || word == "move" || word == "parent";
}
bool IsByHand(std::string_view word) {
    return IsOneStep(word) || word == "merge" || word == "convert" || word == "option";
}

// Goes through a session from where its scene began.
class Walk {
  public:
    Walk(const recorder::TapeSession& session, const std::vector<Checkpoint>& checkpoints,
         const Checkpoint& base)
        : session_(session) {
        found_.base = base;
        WorkGroup& outside = found_.groups.emplace_back();
        outside.isGroup = false;
        outside.fate = Fate::kFinished;
        end_ = session.records.size();
        for (const Checkpoint& each : checkpoints) {
            if (!each.BeginsScene()) continue;
            if (each.record <= base.record) begin_ = each.record;
            if (each.record > base.record) end_ = std::min(end_, each.record);
        }
        FindAnswers();
    }

    MissingWork Find(OpenGroups openGroups) {
        for (std::size_t index = 0; index < end_; ++index) {
            if (index == begin_) BeginScene();
            if (index == found_.base.record) found_.stoppedNodes = stopped_;
            See(index);
            if (index == found_.base.record) NoteBase();
        }
        history_.EndSigns();
        // However it had ended, it would have been cancelled.
        if (isCancelling_ && current_ != kOutside) found_.groups[current_].fate = Fate::kCancelled;
        TellOfGroupsBefore();
        for (WorkGroup& group : found_.groups)
            SettleFate(group);
        KeepCalls(openGroups);
        found_.seconds = seconds_;
        FindOlderNodes();
        if (end_ < session_.records.size())
            found_.leftOut.push_back("what came behind call " +
                                     std::to_string(session_.records[end_].head.call) +
                                     ", where the scene was replaced, belongs to another scene");
        return std::move(found_);
    }

  private:
    struct Entry {
        MissingCall call;
        std::size_t group;
    };

    void FindAnswers() {
        for (std::size_t index = 0; index < end_; ++index) {
            const RecordKind kind = session_.records[index].head.kind;
            if (kind == RecordKind::kAnswer || kind == RecordKind::kThrown)
                answers_.emplace(session_.records[index].head.call, index);
        }
    }

    const Record* AnswerTo(const Record& call) const {
        const auto found = answers_.find(call.head.call);
        return found == answers_.end() ? nullptr : &session_.records[found->second];
    }

    // A status of 0, or none because everything ended in the call.
    bool IsDone(const Record& call) const {
        const Record* const answer = AnswerTo(call);
        return !answer || ValueReader(*answer).Whole() == 0;
    }

    recorder::ObjectId Given(const Record& call) const {
        const Record* const answer = AnswerTo(call);
        return answer && answer->head.kind == RecordKind::kAnswer ? ValueReader(*answer).Object()
                                                                  : 0;
    }

    // Undo, groups and time of an earlier scene say nothing of this one.
    void BeginScene() {
        history_ = {};
        seconds_.reset();
        recordings_.clear();
        depth_ = 0;
        current_ = kOutside;
    }

    void NoteBase() {
        for (const auto& [id, node] : nodes_)
            if (node.isReal && history_.IsPresent(id)) present_.insert(id);
        for (std::size_t group = 0; group < found_.groups.size(); ++group)
            if (history_.IsUndone(group)) undoneAtBase_.insert(group);
        openAtBase_ = current_;
    }

    // The scene has groups of before the base as they were then.
    void TellOfGroupsBefore() {
        const WorkGroup& open = found_.groups[openAtBase_];
        if (open.fate == Fate::kCancelled)
            found_.leftOut.push_back(
                '"' + open.name + "\", of which the scene has the beginning, was cancelled later");
        for (std::size_t group = 0; group < found_.groups.size(); ++group) {
            const WorkGroup& each = found_.groups[group];
            const bool isUndone = history_.IsUndone(group);
            if (!each.isBegunBefore || group == openAtBase_ ||
                undoneAtBase_.contains(group) == isUndone)
                continue;
            found_.leftOut.push_back('"' + each.name + "\", which the scene " +
                                     (isUndone ? "has, was undone" : "lacks, was done again") +
                                     " later");
        }
    }

    void See(std::size_t index) {
        const Record& record = session_.records[index];
        switch (record.head.kind) {
            case RecordKind::kCall:
                SeeCall(index, record);
                open_[record.head.thread].push_back(index);
                break;
            case RecordKind::kAnswer:
            case RecordKind::kThrown:
                SeeEnd(record);
                break;
            case RecordKind::kObject:
                SeeFacts(record);
                break;
            case RecordKind::kNote:
                SeeNote(index, record);
                break;
            default:
                break;
        }
    }

    // Calls ---------------------------------------------------------------------------------------

    void SeeCall(std::size_t index, const Record& call) {
        if (!IsOfCore(call)) return SeeCallOfAdaptor(index, call);
        const Context context = ContextOf(call);
        if (context.isUndoing) return;
        history_.EndSigns();
        const Operation operation = call.head.operation;
        if (operation == Operation::AdaptorInterface_BeginUndoGroup) BeginGroup(index, call);
        const std::string_view ownStep = depth_ == 0 ? OwnStepOf(call) : "";
        if (!ownStep.empty()) BeginOwnStep(index, call, ownStep);
        Add(index, call, context);
        if (!ownStep.empty()) current_ = kOutside;
        if (operation == Operation::AdaptorInterface_EndUndoGroup) EndGroup(false);
        if (operation == Operation::AdaptorInterface_CancelUndoGroup) EndGroup(true);
        if (operation == Operation::AdaptorInterface_PerformUndo) history_.ExpectUndo(1);
        if (operation == Operation::AdaptorInterface_FlushUndoBuffer) history_.Flush();
        if (operation == Operation::AdaptorInterface_AddUndoChunk && IsDone(call) &&
            current_ != kOutside)
            history_.AddChunk(current_, ValueReader(call).Object());
        SeeRecording(call);
        SeeNodes(call);
    }

    std::optional<std::size_t> AnswerIndex(const Record& call) const {
        const auto found = answers_.find(call.head.call);
        if (found == answers_.end()) return std::nullopt;
        return found->second;
    }

    // In which calls of its thread a call stands.
    struct Context {
        bool isUndoing = false;  // what is done there belongs to an undo, redo or cancel
        bool isLoading = false;
        bool isLeaving = false;  // the scene, or the host
    };
    Context ContextOf(const Record& call) {
        Context context;
        const std::span<const std::size_t> open = open_[call.head.thread];
        for (std::size_t depth = 0; depth < open.size(); ++depth) {
            const Operation operation = session_.records[open[depth]].head.operation;
            const bool isSign = (operation == Operation::NodeListener_OnNodeRemoved ||
                                 operation == Operation::NodeListener_OnNodeRestored) &&
                                IsSignIn(open.first(depth));
            context.isUndoing |= isSign || operation == Operation::CUndo_Undo ||
                                 operation == Operation::CUndo_Redo ||
                                 operation == Operation::AdaptorInterface_PerformUndo;
            context.isLoading |= operation == Operation::CoreInterface_SetCoreState;
            context.isLeaving |= operation == Operation::CoreInterface_ResetCore ||
                                 operation == Operation::Routine_detach;
        }
        return context;
    }

    // Whether a listener hears there of an undo, and not of what the Core does just then.
    bool IsSignIn(std::span<const std::size_t> open) const {
        for (auto each = open.rbegin(); each != open.rend(); ++each) {
            const Record& around = session_.records[*each];
            if (IsOfCore(around))
                return around.head.operation == Operation::AdaptorInterface_PerformUndo;
        }
        return true;
    }

    // What is a step of its own outside of groups, if it does anything.
    static std::string_view OwnStepOf(const Record& call) {
        if (call.head.operation == Operation::CNode_Select) return "Select";
        if (call.head.operation != Operation::CExtendable_HandleExtension) return {};
        const int extension = ValueReader(call).Whole();
        const bool converts =
            extension == TVL::kStopRecording || extension == TVL::kUseHostController;
        return converts ? "Convert to PRS controller" : "";
    }

    void BeginOwnStep(std::size_t index, const Record& call, std::string_view name) {
        current_ = found_.groups.size();
        WorkGroup& group = found_.groups.emplace_back();
        group.name = name;
        group.isGroup = false;
        group.fate = Fate::kFinished;
        group.firstCall = call.head.call;
        group.isBegunBefore = index <= found_.base.record;
        ownStep_ = current_;
        isOwnStepMade_ = name == "Select";
    }

    void BeginGroup(std::size_t index, const Record& call) {
        if (!IsDone(call)) return;
        if (depth_++ > 0) return;
        current_ = found_.groups.size();
        WorkGroup& group = found_.groups.emplace_back();
        group.name = ValueReader(call).Text();
        group.firstCall = call.head.call;
        group.isBegunBefore = index <= found_.base.record;
        hasSteps_ = false;
    }

    void EndGroup(bool isCancelled) {
        if (depth_ == 0) return;
        isCancelling_ |= isCancelled;
        if (--depth_ > 0) return;
        if (current_ != kOutside) {
            found_.groups[current_].fate = isCancelling_ ? Fate::kCancelled : Fate::kFinished;
            if (isCancelling_)
                history_.Cancel(current_);
            else if (hasSteps_)
                history_.Push(current_);
        }
        isCancelling_ = false;
        current_ = kOutside;
    }

    void SeeRecording(const Record& call) {
        const Operation operation = call.head.operation;
        const bool begins = operation == Operation::AdaptorInterface_BeginRecording ||
                            operation == Operation::AdaptorInterface_BeginRecordingUnkeyed;
        if (begins && IsDone(call)) {
            recordings_.push_back(call.head.call);
            hasSteps_ = true;
        }
        if (operation == Operation::AdaptorInterface_EndRecording && !recordings_.empty())
            recordings_.pop_back();
    }

    void SeeNodes(const Record& call) {
        const recorder::ObjectId given = Given(call);
        ValueReader said(call);
        switch (call.head.operation) {
            case Operation::AdaptorInterface_CreateLensNode:
            case Operation::AdaptorInterface_CreateHelperNode: {
                if (given == 0) break;
                const bool isHelper =
                    call.head.operation == Operation::AdaptorInterface_CreateHelperNode;
                TapeNode& node = nodes_[given];
                node.owner = said.Object();
                node.name = said.Text();
                node.isReal = true;
                for (const char letter : std::string_view(isHelper ? "og" : "o"))
                    said.Skip(letter);
                if (current_ != kOutside) history_.AddMade(current_, given, said.Object() != 0);
                break;
            }
            case Operation::CoreNode_Claim: {
                if (given == 0) break;
                TapeNode& node = nodes_[given];
                const TapeNode from = nodes_[call.head.object];
                node.storedPlugin = from.storedPlugin;
                node.storedName = from.storedName;
                node.owner = said.Object();
                node.name = said.Text();
                node.isReal = true;
                break;
            }
            case Operation::AdaptorInterface_ClaimNodes:
                SeeClaims(call);
                break;
            case Operation::CoreNode_Unclaim:
            case Operation::CoreNode_Destroy:
                nodes_[call.head.object].isReal = false;
                break;
            case Operation::CoreNode_Delete:
                if (current_ != kOutside)
                    history_.AddDeleted(current_, call.head.object);
                else
                    nodes_[call.head.object].isReal = false;
                break;
            case Operation::CoreNode_SetName:
                nodes_[call.head.object].AddHostName(said.Text());
                break;
            case Operation::CExtendable_HandleExtension:
                if (said.Whole() == TVL::kStopRecording) stopped_.insert(call.head.object);
                break;
            case Operation::CoreNode_AcquireSnapshot:
            case Operation::CoreNode_AcquireMeshSnapshot:
            case Operation::CoreNode_AcquireLensSnapshot:
            case Operation::CoreNode_AcquireShapeSnapshot:
                if (given != 0) lent_[given] = {call.head.object, said.Number()};
                break;
            case Operation::CoreNode_AcquireHelperSnapshot:
                if (given != 0) lent_[given] = {call.head.object, 0};
                break;
            default:
                break;
        }
    }

    // By which plug-in and name a stored node was asked for.
    void SeeClaims(const Record& call) {
        const Record* const answer = AnswerTo(call);
        if (!answer || answer->head.kind != RecordKind::kAnswer) return;
        ValueReader said(call);
        const std::string plugin(said.Text());
        const XMLNode info = said.Tree();
        const std::vector<recorder::ObjectId> found = ValueReader(*answer).Objects();
        for (std::size_t index = 0; index < found.size(); ++index) {
            if (found[index] == 0) continue;
            const XMLNode& entry = info.Child("node", static_cast<std::int32_t>(index));
            const auto name = entry.attributes.find("name");
            nodes_[found[index]].storedPlugin = plugin;
            nodes_[found[index]].storedName = name == entry.attributes.end() ? "" : name->second;
        }
    }

    // What the adaptor calls ----------------------------------------------------------------------

    void SeeCallOfAdaptor(std::size_t index, const Record& call) {
        ValueReader said(call);
        switch (call.head.operation) {
            case Operation::CUndo_Undo:
                if (said.Truth()) history_.SeeUndone(call.head.object);
                break;
            case Operation::CUndo_Redo:
                history_.SeeRedone(call.head.object);
                break;
            case Operation::NodeListener_OnNodeRemoved:
                if (IsSignIn(open_[call.head.thread])) history_.SeeRemoved(said.Object());
                break;
            case Operation::NodeListener_OnNodeRestored:
                if (IsSignIn(open_[call.head.thread])) history_.SeeRestored(said.Object());
                break;
            case Operation::CoreInterface_NotifyTimeChanged:
                seconds_ = said.Number();
                break;
            case Operation::CoreInterface_IsCoreRunning:
                isOwnStepMade_ = true;  // a conversion asks for keys
                break;
            case Operation::CUndo_Release:
            case Operation::CoreInterface_GetOptionValue:
            case Operation::MessageNode_Receive:
                break;
            default:
                history_.EndSigns();
                SeeState(index, call);
                break;
        }
    }

    void SeeState(std::size_t index, const Record& call) {
        const Record* const answer = AnswerTo(call);
        if (index < found_.base.record || !answer || answer->head.kind != RecordKind::kAnswer)
            return;
        if (call.head.operation == Operation::CoreInterface_GetCoreState)
            found_.coreState = ValueReader(*answer).Tree();
        if (call.head.operation == Operation::CExtendable_HandleExtension &&
            ValueReader(call).Whole() == TVL::kSceneBeingSaved)
            found_.partsOfOwners[call.head.object] = ArgumentOfAnswer(*answer);
    }

    // A call that threw had its group's hold cancelled and its recording ended, if it had begun
    // them; the group's name stands until it is ended.
    void SeeEnd(const Record& end) {
        if (end.head.operation == Operation::AdaptorInterface_GetCurrentTime &&
            end.head.kind == RecordKind::kAnswer)
            seconds_ = ValueReader(end).Number();
        std::vector<std::size_t>& open = open_[end.head.thread];
        const auto ended = std::ranges::find_if(open, [&](std::size_t index) {
            return session_.records[index].head.call == end.head.call;
        });
        if (ended == open.end()) return;
        const Record& call = session_.records[*ended];
        open.erase(ended, open.end());
        if (ownStep_ != kOutside && found_.groups[ownStep_].firstCall == call.head.call) {
            if (isOwnStepMade_) history_.Push(ownStep_);
            ownStep_ = kOutside;
        }
        if (end.head.kind != RecordKind::kThrown || IsOfCore(call)) return;
        std::erase_if(recordings_, [&](std::uint64_t began) { return began > call.head.call; });
        if (current_ == kOutside || found_.groups[current_].firstCall < call.head.call) return;
        found_.groups[current_].fate = Fate::kCancelled;
        history_.Cancel(current_);
        current_ = kOutside;
    }

    void SeeFacts(const Record& record) {
        const recorder::ObjectFacts facts = ValueReader(record).Facts();
        const recorder::ObjectId id = record.head.object;
        const ObjectKind kind = recorder::KindOf(id);
        if (kind == ObjectKind::kOwner) found_.plugins[id] = facts.name;
        if (kind >= ObjectKind::kSnapshot && kind <= ObjectKind::kShapeSnapshot)
            lent_[id] = {facts.of, facts.seconds};
        if (kind != ObjectKind::kNode) return;
        TapeNode& node = nodes_[id];
        node.owner = facts.of;
        node.name = facts.name;
        // While a deletion is undone there is no host node yet.
        if (!facts.hostName.empty()) node.AddHostName(facts.hostName);
        node.isReal = !facts.isSnapshot;
    }

    void SeeNote(std::size_t index, const Record& record) {
        const auto [word, about] = NoteOf(record);
        history_.EndSigns();
        if (word == note::kMerged && index > found_.base.record)
            found_.leftOut.push_back("merged by hand: " +
                                     std::string(about.substr(about.find(' ') + 1)));
        if (word != note::kStep) return;
        const StepNote step = StepOf(about);
        if (step.word == "undo") history_.ExpectUndo(step.count);
        if (step.word == "redo") history_.ExpectRedo(step.count);
        if (IsOneStep(step.word)) history_.PushOther();
        if (IsByHand(step.word) && step.word != "merge" && index > found_.base.record)
            found_.leftOut.push_back("done by hand: " + std::string(about));
    }

    // What is kept --------------------------------------------------------------------------------

    // Calls while state is loaded find again what is found otherwise here.
    void Add(std::size_t index, const Record& call, const Context& context) {
        const Effect effect = EffectOf(call);
        MissingCall missing;
        missing.record = index;
        missing.answer = AnswerIndex(call);
        missing.isRecording = !recordings_.empty();
        missing.seconds = seconds_;
        missing.isSample = effect == Effect::kSample;
        missing.isChange = missing.isSample || effect == Effect::kChange;
        hasSteps_ |=
            missing.isChange || call.head.operation == Operation::AdaptorInterface_AddUndoChunk;
        if (effect == Effect::kNone || index <= found_.base.record || context.isLeaving) return;
        // A real node that the Core lets go is one still.
        if (call.head.operation == Operation::CoreNode_Destroy && nodes_[call.head.object].isReal)
            return;
        const bool isClaim = call.head.operation == Operation::CoreNode_Claim;
        if (context.isLoading && (!missing.isChange || isClaim)) return;
        if (const auto lent = lent_.find(call.head.object); lent != lent_.end())
            missing.lent = lent->second;
        entries_.push_back({missing, current_});
        if (missing.isChange) Count(missing, call);
    }

    void Count(const MissingCall& missing, const Record& call) {
        WorkGroup& group = found_.groups[current_];
        ++group.changes;
        if (missing.isSample) {
            ++group.samples;
            group.moments.insert(missing.lent.seconds);
        }
        const recorder::ObjectId on = missing.lent.node != 0 ? missing.lent.node : call.head.object;
        for (const recorder::ObjectId id : {on, Given(call)})
            if (recorder::KindOf(id) == ObjectKind::kNode) group.nodes.insert(id);
        if (MakesSceneNode(call.head.operation)) madeAnew_.insert(Given(call));
    }

    void SettleFate(WorkGroup& group) {
        const auto index = static_cast<std::size_t>(&group - found_.groups.data());
        if (group.fate == Fate::kFinished && history_.IsUndone(index)) group.fate = Fate::kUndone;
    }

    void KeepCalls(OpenGroups openGroups) {
        for (const Entry& entry : entries_) {
            const Fate fate = found_.groups[entry.group].fate;
            const bool isKept = fate == Fate::kFinished ||
                                (fate == Fate::kOpen && openGroups == OpenGroups::kTaken);
            if (isKept && IsUseful(entry)) found_.calls.push_back(entry.call);
        }
    }

    // What gave nothing, or nobody knows what, would only leave things that nobody gives back; but
    // what was being made when everything ended is made.
    bool IsUseful(const Entry& entry) const {
        const Record& call = session_.records[entry.call.record];
        const std::string_view letters = recorder::RowOf(call.head.operation).answered;
        if (letters.starts_with('O')) return AnswerTo(call) != nullptr;
        if (!letters.starts_with('o') || Given(call) != 0) return true;
        return !AnswerTo(call) && MakesSceneNode(call.head.operation);
    }

    // Nodes that the calls name and do not make, and then all others that were there.
    void FindOlderNodes() {
        std::set<recorder::ObjectId> known;
        for (const MissingCall& missing : found_.calls) {
            const Record& call = session_.records[missing.record];
            ForEachNodeSaid(call, [&](recorder::ObjectId id) {
                if (known.insert(id).second) AddOlder(id);
            });
            for (const recorder::ObjectId id : NewNodes(call))
                known.insert(id);
        }
        found_.neededNodes = found_.nodes.size();
        for (const recorder::ObjectId id : present_)
            if (known.insert(id).second) AddOlder(id);
    }

    // Which a call has given, and nobody had before.
    std::vector<recorder::ObjectId> NewNodes(const Record& call) const {
        const Record* const answer = AnswerTo(call);
        const Operation operation = call.head.operation;
        if (!answer || answer->head.kind != RecordKind::kAnswer ||
            operation == Operation::AdaptorInterface_FindNode ||
            operation == Operation::AdaptorInterface_GetNodes)
            return {};
        ValueReader answered(*answer);
        const std::string_view letters = recorder::RowOf(operation).answered;
        if (letters == "O") return answered.Objects();
        if (letters == "o" || (letters == "xx" && answered.Letter() == 'o'))
            return {answered.Object()};
        return {};
    }

    template <class Use>
    void ForEachNodeSaid(const Record& call, const Use& use) {
        const auto offer = [&](recorder::ObjectId id) {
            if (const auto lent = lent_.find(id); lent != lent_.end()) id = lent->second.node;
            if (recorder::KindOf(id) == ObjectKind::kNode && !madeAnew_.contains(id)) use(id);
        };
        offer(call.head.object);
        ValueReader said(call);
        for (const char letter : recorder::RowOf(call.head.operation).said) {
            const auto value = said.Skip(letter);
            if (letter == 'o') offer(value.front());
            if (letter == 'x' && value.front() == 'o') offer(value.back());
        }
    }

    void AddOlder(recorder::ObjectId id) {
        TapeNode node = nodes_[id];
        node.id = id;
        const auto plugin = found_.plugins.find(node.owner);
        if (plugin != found_.plugins.end()) node.plugin = plugin->second;
        found_.nodes.push_back(std::move(node));
    }

    const recorder::TapeSession& session_;
    MissingWork found_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::unordered_map<std::uint64_t, std::size_t> answers_;
    std::map<std::uint8_t, std::vector<std::size_t>> open_;  // calls of each thread, as records

    UndoHistory history_;
    std::size_t depth_ = 0;  // of groups
    std::size_t current_ = kOutside;
    bool isCancelling_ = false;
    bool hasSteps_ = false;           // the group has done what makes it a step
    std::size_t ownStep_ = kOutside;  // that a call which is open makes
    bool isOwnStepMade_ = false;
    std::vector<std::uint64_t> recordings_;  // the calls that began those that are open
    std::optional<double> seconds_;

    std::unordered_map<recorder::ObjectId, TapeNode> nodes_;
    std::unordered_map<recorder::ObjectId, Lent> lent_;
    std::set<recorder::ObjectId> stopped_;
    std::set<recorder::ObjectId> present_;   // real nodes, at the base
    std::set<recorder::ObjectId> madeAnew_;  // behind it
    std::set<std::size_t> undoneAtBase_;
    std::size_t openAtBase_ = kOutside;
    std::vector<Entry> entries_;
};

}  // namespace

void TapeNode::AddHostName(std::string_view hostName) {
    std::erase(hostNames, hostName);
    hostNames.emplace(hostNames.begin(), hostName);
}

bool MissingWork::HasWork() const {
    return HasOpenGroup() || std::ranges::any_of(groups, [](const WorkGroup& group) {
               return group.changes > 0 && group.fate == Fate::kFinished;
           });
}

bool MissingWork::HasOpenGroup() const {
    return std::ranges::any_of(groups, [](const WorkGroup& group) {
        return group.changes > 0 && group.fate == Fate::kOpen;
    });
}

MissingWork FindMissingWork(const recorder::TapeSession& session,
                            const std::vector<Checkpoint>& checkpoints, const Checkpoint& base,
                            OpenGroups openGroups) {
    return Walk(session, checkpoints, base).Find(openGroups);
}

}  // namespace player
