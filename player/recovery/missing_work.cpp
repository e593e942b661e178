#include "player/recovery/missing_work.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "player/recovery/effects.h"
#include "recorder/stream/notes.h"
#include "tvl/ids.h"

namespace player {
namespace {

using recorder::ValueReader;
namespace note = recorder::note;

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

// Steps by which a person changes the scene. What the Core did in them is on the tape.
bool IsByHand(std::string_view word) {
    return word == "delete" || word == "move" || word == "parent" || word == "convert" ||
           word == "option";
}

// Goes through a session from where its scene began.
class Walk {
  public:
    Walk(const recorder::TapeSession& session, const std::vector<Checkpoint>& checkpoints,
         const Checkpoint& base)
        : records_(session.records), calls_(session), groups_(calls_), nodes_(calls_) {
        found_.base = base;
        end_ = records_.size();
        for (const Checkpoint& each : checkpoints) {
            if (!each.BeginsScene()) continue;
            if (each.record <= base.record) begin_ = each.record;
            if (each.record > base.record) end_ = std::min(end_, each.record);
        }
    }

    MissingWork Find(OpenGroups openGroups) {
        for (std::size_t index = 0; index < end_; ++index) {
            if (index == begin_) BeginScene();
            See(index);
            if (index == found_.base.record) NoteBase();
        }
        groups_.End();
        TellOfGroupsBefore();
        KeepCalls(openGroups);
        FindOlderNodes();
        found_.groups = std::move(groups_.All());
        if (end_ < records_.size())
            found_.leftOut.push_back("what came behind call " +
                                     std::to_string(records_[end_].head.call) +
                                     ", where the scene was replaced, belongs to another scene");
        return std::move(found_);
    }

  private:
    struct Entry {
        MissingCall call;
        std::size_t group;
    };

    void BeginScene() {
        groups_.BeginScene();
        found_.seconds.reset();
    }

    void NoteBase() {
        found_.stoppedNodes = nodes_.Stopped();
        for (const auto& [id, node] : nodes_.All())
            if (node.isReal && groups_.History().IsPresent(id)) present_.insert(id);
        for (std::size_t group = 0; group < groups_.All().size(); ++group) {
            groups_.All()[group].isBegunBefore = true;
            if (groups_.History().IsUndone(group)) undoneAtBase_.insert(group);
        }
    }

    // The scene has groups of before the base as they were then.
    void TellOfGroupsBefore() {
        const auto tell = [this](const WorkGroup& group, const std::string& what) {
            found_.leftOut.push_back('"' + group.name + "\", " + what + " later");
        };
        for (std::size_t index = 1; index < groups_.All().size(); ++index) {
            const WorkGroup& group = groups_.All()[index];
            const bool isUndone = groups_.History().IsUndone(index);
            const bool wasUndone = undoneAtBase_.contains(index);
            if (!group.isBegunBefore || isUndone == wasUndone) continue;
            if (group.fate == Fate::kCancelled)
                tell(group, "of which the scene has the beginning, was cancelled");
            else
                tell(group, isUndone ? "which the scene has, was undone"
                                     : "which the scene lacks, was done again");
        }
    }

    void See(std::size_t index) {
        const Record& record = records_[index];
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
                nodes_.SeeFacts(record);
                if (recorder::KindOf(record.head.object) == ObjectKind::kOwner)
                    found_.plugins[record.head.object] = ValueReader(record).Facts().name;
                break;
            case RecordKind::kNote:
                SeeNote(index, record);
                break;
            default:
                break;
        }
    }

    void SeeCall(std::size_t index, const Record& call) {
        if (!IsOfCore(call)) return SeeCallOfAdaptor(index, call);
        const Context context = ContextOf(call);
        if (context.isUndoing) return;
        groups_.EndSigns();
        groups_.SeeBegin(call);
        const bool isChange = Add(index, call, context);
        if (call.head.operation == Operation::CoreNode_Delete &&
            groups_.Current() == WorkGroups::kOutside)
            nodes_.Forget(call.head.object);
        groups_.SeeCall(call, isChange);
        nodes_.SeeCall(call);
    }

    void SeeCallOfAdaptor(std::size_t index, const Record& call) {
        groups_.SeeCallOfAdaptor(call, IsSignIn(open_[call.head.thread]));
        if (call.head.operation == Operation::CoreInterface_NotifyTimeChanged)
            found_.seconds = ValueReader(call).Number();
        const Record* const answer = index < found_.base.record ? nullptr : calls_.AnswerTo(call);
        if (!answer) return;
        if (call.head.operation == Operation::CoreInterface_GetCoreState)
            found_.coreState = ValueReader(*answer).Tree();
        if (call.head.operation == Operation::CExtendable_HandleExtension &&
            ValueReader(call).Whole() == TVL::kSceneBeingSaved)
            found_.partsOfOwners[call.head.object] = ArgumentOfAnswer(*answer);
    }

    void SeeEnd(const Record& end) {
        const bool isThrown = end.head.kind == RecordKind::kThrown;
        if (end.head.operation == Operation::AdaptorInterface_GetCurrentTime && !isThrown)
            found_.seconds = ValueReader(end).Number();
        std::vector<std::size_t>& open = open_[end.head.thread];
        const auto ended = std::ranges::find_if(
            open, [&](std::size_t index) { return records_[index].head.call == end.head.call; });
        if (ended == open.end()) return;
        groups_.SeeEnd(records_[*ended], isThrown);
        open.erase(ended, open.end());
    }

    void SeeNote(std::size_t index, const Record& record) {
        const auto [word, about] = recorder::NoteOf(record);
        if (word == note::kSettings || word == note::kRead) return;
        const bool isMissing = index > found_.base.record;
        if (word == note::kOwnWork && isMissing)
            found_.leftOut.push_back("done by the host: " + std::string(about));
        if (word == note::kMerged && isMissing)
            found_.leftOut.push_back("merged by hand: " +
                                     std::string(recorder::SceneOf(about).rest));
        const StepNote step = word == note::kStep ? StepOf(about) : StepNote{""};
        groups_.SeeStep(step.word, step.count);
        if (IsByHand(step.word) && isMissing)
            found_.leftOut.push_back("done by hand: " + std::string(about));
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
            const Operation operation = records_[open[depth]].head.operation;
            const bool isSign = recorder::IsOfListener(operation) && IsSignIn(open.first(depth));
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
            const Record& around = records_[*each];
            if (IsOfCore(around))
                return around.head.operation == Operation::AdaptorInterface_PerformUndo;
        }
        return true;
    }

    // Calls while state is loaded find again what is found otherwise here, and a real node that the
    // Core lets go is one still. Whether the call changes the scene.
    bool Add(std::size_t index, const Record& call, const Context& context) {
        const Effect effect = EffectOf(call);
        MissingCall missing;
        missing.record = index;
        missing.answer = calls_.EndOf(call);
        missing.isRecording = groups_.IsRecording();
        missing.seconds = found_.seconds;
        missing.isSample = effect == Effect::kSample;
        missing.isChange = missing.isSample || effect == Effect::kChange;
        missing.lent = nodes_.LentAs(call.head.object);
        const Operation operation = call.head.operation;
        const bool isFoundHere =
            context.isLoading && (!missing.isChange || operation == Operation::CoreNode_Claim);
        const bool isLetGo =
            operation == Operation::CoreNode_Destroy && nodes_.IsReal(call.head.object);
        if (effect == Effect::kNone || index <= found_.base.record || context.isLeaving ||
            isFoundHere || isLetGo)
            return missing.isChange;
        entries_.push_back({missing, groups_.Current()});
        if (missing.isChange) Count(missing, call);
        return missing.isChange;
    }

    void Count(const MissingCall& missing, const Record& call) {
        WorkGroup& group = groups_.All()[groups_.Current()];
        ++group.changes;
        if (missing.isSample) {
            ++group.samples;
            group.moments.insert(missing.lent.seconds);
        }
        for (const ObjectId id : {missing.Node(call), calls_.Given(call)})
            if (recorder::KindOf(id) == ObjectKind::kNode) group.nodes.insert(id);
        if (MakesSceneNode(call.head.operation)) madeAnew_.insert(calls_.Given(call));
    }

    void KeepCalls(OpenGroups openGroups) {
        for (const Entry& entry : entries_) {
            const bool isKept = ComesBack(groups_.All()[entry.group], openGroups);
            if (isKept && IsUseful(records_[entry.call.record])) found_.calls.push_back(entry.call);
        }
    }

    // What gave nothing, or nobody knows what, would only leave things that nobody gives back; but
    // what was being made when everything ended is made.
    bool IsUseful(const Record& call) const {
        const std::string_view letters = recorder::RowOf(call.head.operation).answered;
        const bool isAnswered = calls_.AnswerTo(call) != nullptr;
        if (letters == "O") return isAnswered;
        if (letters != "o" || calls_.Given(call) != 0) return true;
        return !isAnswered && MakesSceneNode(call.head.operation);
    }

    // Nodes that the calls name and do not make, and then all others that were there.
    void FindOlderNodes() {
        std::set<ObjectId> known = madeAnew_;
        for (const MissingCall& missing : found_.calls) {
            const Record& call = records_[missing.record];
            AddOlder(missing.Node(call), known);
            ValueReader said(call);
            for (const char letter : recorder::RowOf(call.head.operation).said) {
                const auto value = said.Skip(letter);
                if (letter == 'o') AddOlder(value.front(), known);
                if (letter == 'x' && value.front() == 'o') AddOlder(value.back(), known);
            }
            for (const ObjectId id : calls_.NewNodes(call))
                known.insert(id);
        }
        for (const ObjectId id : present_)
            AddOlder(id, known);
    }

    void AddOlder(ObjectId id, std::set<ObjectId>& known) {
        if (recorder::KindOf(id) != ObjectKind::kNode || !known.insert(id).second) return;
        TapeNode node = nodes_.Find(id);
        const auto plugin = found_.plugins.find(node.owner);
        if (plugin != found_.plugins.end()) node.plugin = plugin->second;
        found_.nodes.push_back(std::move(node));
    }

    const std::vector<Record>& records_;
    const SessionCalls calls_;
    WorkGroups groups_;
    TapeNodes nodes_;
    MissingWork found_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::map<std::uint8_t, std::vector<std::size_t>> open_;  // calls of each thread, as records
    std::vector<Entry> entries_;

    std::set<ObjectId> present_;   // real nodes, at the base
    std::set<ObjectId> madeAnew_;  // behind it
    std::set<std::size_t> undoneAtBase_;
};

}  // namespace

bool ComesBack(const WorkGroup& group, OpenGroups openGroups) {
    return group.fate == Fate::kFinished ||
           (group.fate == Fate::kOpen && openGroups == OpenGroups::kTaken);
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
