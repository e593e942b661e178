#include "player/recovery/checkpoints.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "recorder/stream/notes.h"
#include "recorder/stream/record_reader.h"
#include "tvl/ids.h"

namespace player {
namespace {

using recorder::Operation;
using recorder::Record;
using recorder::RecordKind;
namespace note = recorder::note;

// What is asked at any moment, and tells nothing of scenes.
bool IsSmallTalk(Operation operation) {
    switch (operation) {
        case Operation::CoreInterface_NotifyTimeChanged:
        case Operation::CoreInterface_IsCoreRunning:
        case Operation::CoreInterface_StopCore:
        case Operation::CoreInterface_GetOptionNode:
        case Operation::CoreInterface_BindOption:
        case Operation::CoreInterface_GetOptionValue:
        case Operation::CUndo_Release:
        case Operation::MessageNode_Receive:
            return true;
        default:
            return false;
    }
}

bool IsToldToCore(Operation operation) {
    const std::string_view name = recorder::RowOf(operation).className;
    return name == "CoreInterface" || name == "NodeListener" || name == "CUndo";
}

class CheckpointList {
  public:
    explicit CheckpointList(const recorder::TapeSession& session) : session_(session) {}

    std::vector<Checkpoint> Take() {
        const auto& records = session_.records;
        // A session that is told again has lost its beginning.
        const bool isCut = records.empty() || records.front().head.kind != RecordKind::kSession ||
                           records.front().head.call == 0;
        Add(isCut ? Checkpoint::Kind::kJoined : Checkpoint::Kind::kBegan, 0);
        for (std::size_t index = 0; index < session_.records.size(); ++index)
            See(index);
        EndLoading();
        if (HasNotes(session_))
            std::erase_if(list_, [](const Checkpoint& each) {
                return each.kind == Checkpoint::Kind::kSaved && each.digest.empty();
            });
        return std::move(list_);
    }

  private:
    Checkpoint& Add(Checkpoint::Kind kind, std::size_t index) {
        Checkpoint& added = list_.emplace_back();
        added.kind = kind;
        added.record = index;
        if (index < session_.records.size()) {
            added.call = session_.records[index].head.call;
            added.milliseconds = session_.records[index].head.milliseconds;
        }
        return added;
    }

    void See(std::size_t index) {
        const Record& record = session_.records[index];
        if (record.head.kind == RecordKind::kCall) SeeCall(index, record);
        if (record.head.kind == RecordKind::kAnswer) SeeAnswer(index, record);
        if (record.head.kind == RecordKind::kNote) SeeNote(index, record);
    }

    void SeeCall(std::size_t index, const Record& record) {
        const Operation operation = record.head.operation;
        if (operation == Operation::CExtendable_HandleExtension) return SeeExtension(record);
        if (!IsToldToCore(operation) || IsSmallTalk(operation)) return;
        const bool isFresh = isFresh_;
        isFresh_ = operation == Operation::CoreInterface_ResetCore ||
                   (isFresh && operation == Operation::CoreInterface_SetCoreState);
        if (operation == Operation::CoreInterface_ResetCore) {
            EndLoading();
            parts_.clear();
            // The host tells twice of a new scene.
            if (!isFresh) Add(Checkpoint::Kind::kEmptied, index);
            list_.back().record = index;
        } else if (operation == Operation::CoreInterface_SetCoreState) {
            const bool isJoined = list_.size() == 1 && record.head.nesting == 0 && !isFresh;
            isTakenForJoined_ |= isJoined && list_.back().kind == Checkpoint::Kind::kBegan;
            if (isJoined) list_.back().kind = Checkpoint::Kind::kJoined;
            if (isFresh) loaded_.push_back(Comparable(recorder::ValueReader(record).Tree()));
        } else {
            EndLoading();
        }
    }

    void EndLoading() {
        if (loaded_.empty()) return;
        list_.back().kind = Checkpoint::Kind::kOpened;
        list_.back().state.loaded = std::move(loaded_);
        loaded_.clear();
    }

    void SeeExtension(const Record& record) {
        if (recorder::KindOf(record.head.object) != recorder::ObjectKind::kOwner) return;
        if (recorder::ValueReader(record).Whole() == TVL::kSceneBeingSaved)
            asked_.insert(record.head.call);
    }

    void SeeAnswer(std::size_t index, const Record& record) {
        if (record.head.operation == Operation::CExtendable_HandleExtension &&
            asked_.erase(record.head.call) != 0)
            for (const auto& part : ArgumentOfAnswer(record).children)
                parts_.insert(Comparable(*part));
        if (record.head.operation != Operation::CoreInterface_GetCoreState) return;
        const XMLNode whole = recorder::ValueReader(record).Tree();
        Checkpoint& saved = Add(Checkpoint::Kind::kSaved, index);
        saved.milliseconds = lastMilliseconds_;
        if (!whole.children.empty()) saved.state.whole = Comparable(whole);
        saved.state.parts = std::move(parts_);
        parts_.clear();
    }

    void SeeNote(std::size_t index, const Record& record) {
        const auto [word, about] = recorder::NoteOf(record);
        if (word == note::kSettings || word == note::kRead) return;
        lastMilliseconds_ = record.head.milliseconds;
        EndLoading();
        isFresh_ = false;
        // The state came with a scene that was merged into the first one, which was empty.
        if (std::exchange(isTakenForJoined_, false) && word == note::kMerged)
            list_.front().kind = Checkpoint::Kind::kBegan;
        if (word == note::kOpened) {
            Checkpoint& opened = SceneOfNow();
            opened.kind = Checkpoint::Kind::kOpened;
            Name(opened, about);
        } else if (word == note::kSaved) {
            const Checkpoint& last = list_.back();
            const bool isAsked = last.kind == Checkpoint::Kind::kSaved && last.digest.empty();
            Checkpoint& saved = isAsked ? list_.back() : Add(Checkpoint::Kind::kSaved, index);
            saved.record = index;
            saved.milliseconds = record.head.milliseconds;
            Name(saved, about);
        }
    }

    Checkpoint& SceneOfNow() {
        return *std::find_if(list_.rbegin(), list_.rend(),
                             [](const Checkpoint& each) { return each.BeginsScene(); });
    }

    static void Name(Checkpoint& checkpoint, std::string_view about) {
        const auto [digest, path] = recorder::SceneOf(about);
        checkpoint.digest = digest;
        checkpoint.path = path;
    }

    const recorder::TapeSession& session_;
    std::vector<Checkpoint> list_;
    std::vector<std::string> loaded_;
    std::set<std::string> parts_;
    std::set<std::uint64_t> asked_;  // calls of extension 56 without an answer yet
    std::uint32_t lastMilliseconds_ = 0;
    bool isFresh_ = false;           // nothing but state has come since the scene was emptied
    bool isTakenForJoined_ = false;  // by the state that came last
};

template <class IsIt>
const Checkpoint* FindLast(const std::vector<Checkpoint>& checkpoints, const IsIt& isIt) {
    const auto found = std::find_if(checkpoints.rbegin(), checkpoints.rend(), isIt);
    return found == checkpoints.rend() ? nullptr : &*found;
}

std::string WordsOf(const Checkpoint& checkpoint) {
    switch (checkpoint.kind) {
        case Checkpoint::Kind::kBegan:
            return "the beginning, with an empty scene";
        case Checkpoint::Kind::kJoined:
            return "the beginning of what is there, with a scene that nothing is known of";
        case Checkpoint::Kind::kEmptied:
            return "the scene was emptied";
        case Checkpoint::Kind::kOpened:
            return "opened";
        case Checkpoint::Kind::kSaved:
            return "saved";
    }
    return {};
}

}  // namespace

std::vector<Checkpoint> CheckpointsOf(const recorder::TapeSession& session) {
    return CheckpointList(session).Take();
}

bool HasNotes(const recorder::TapeSession& session) {
    return std::ranges::any_of(session.records, [](const Record& record) {
        const std::string_view word = recorder::NoteOf(record).word;
        return word == note::kOpened || word == note::kSaved || word == note::kNew;
    });
}

const Checkpoint* FindByDigest(const std::vector<Checkpoint>& checkpoints,
                               const std::string& digest) {
    if (digest.empty()) return nullptr;
    return FindLast(checkpoints, [&](const Checkpoint& each) { return each.digest == digest; });
}

const Checkpoint* FindByState(const std::vector<Checkpoint>& checkpoints,
                              const StoredState& scene) {
    return FindLast(checkpoints, [&](const Checkpoint& each) {
        if (each.kind == Checkpoint::Kind::kOpened) return each.state.loaded == scene.loaded;
        if (each.kind == Checkpoint::Kind::kSaved)
            return each.state.whole == scene.whole && each.state.parts == scene.parts;
        return each.IsEmpty() && scene.whole.empty() && scene.parts.empty();
    });
}

Checkpoint CheckpointAfter(const recorder::TapeSession& session, std::uint64_t call) {
    Checkpoint named;
    named.kind = Checkpoint::Kind::kSaved;
    for (std::size_t index = 0; index < session.records.size(); ++index) {
        const recorder::RecordHead& head = session.records[index].head;
        if (head.call > call) continue;
        named.record = index;
        named.call = std::max(named.call, head.call);
        named.milliseconds = std::max(named.milliseconds, head.milliseconds);
    }
    return named;
}

std::string LineOf(const Checkpoint& checkpoint) {
    std::string line = "--after " + std::to_string(checkpoint.call) + " (" +
                       recorder::InSeconds(checkpoint.milliseconds) + " s, " + WordsOf(checkpoint);
    if (!checkpoint.path.empty()) line += ' ' + checkpoint.path;
    return line + ')';
}

// The reader does not bring back all that can be written.
std::string Comparable(const XMLNode& tree) {
    return XMLNode(tree.Write()).Write();
}

XMLNode ArgumentOfAnswer(const recorder::Record& answer) {
    recorder::ValueReader values(answer);
    values.Skip('x');  // the result
    return values.Letter() == 't' ? values.Tree() : XMLNode();
}

}  // namespace player
