#include "player/replay/causes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "player/perform.h"
#include "recorder/stream/notes.h"
#include "tvl/panel.h"

namespace player {
namespace {

using recorder::ValueReader;

// What can come of one and the same thing.
constexpr std::array kOfAnotherScene = {
    Operation::CoreInterface_SetCoreState, Operation::CoreInterface_NotifyTimeChanged,
    Operation::CUndo_Release, Operation::CoreInterface_IsCoreRunning};
constexpr std::array kOfSaving = {Operation::CExtendable_HandleExtension, Operation::CUndo_Release,
                                  Operation::CoreInterface_GetCoreState,
                                  Operation::CoreInterface_IsCoreRunning};
constexpr std::array kOfDeletion = {
    Operation::CoreInterface_IsCoreRunning, Operation::CoreInterface_StopCore,
    Operation::CExtendable_HasExtension, Operation::CExtendable_HandleExtension};
constexpr std::array kOfRelease = {Operation::CUndo_Release};

bool IsOutermost(const Record& record) {
    return record.head.kind == RecordKind::kCall && record.head.nesting == 0;
}

// 0 for another operation.
int ExtensionOf(const Record& call) {
    const Operation operation = call.head.operation;
    const bool is = operation == Operation::CExtendable_HandleExtension ||
                    operation == Operation::CExtendable_HasExtension;
    return is ? ValueReader(call).Whole() : 0;
}

std::string TextOf(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

Cause Steps(std::string step) {
    Cause cause;
    cause.steps.push_back(std::move(step));
    return cause;
}

// A silent step may stand above the one that is meant.
Cause Repeated(std::string step) {
    Cause cause = Steps(std::move(step));
    cause.isRepeated = true;
    return cause;
}

std::string NameAt(std::uint64_t call) {
    return "saved at call " + std::to_string(call);
}

Cause Unknown(std::string whyNot) {
    Cause cause;
    cause.whyNot = std::move(whyNot);
    return cause;
}

}  // namespace

// The outermost calls from one on that can come of one thing that the host did, and the note on a
// scene that stands behind them.
class Causes::Event {
  public:
    Event(const std::vector<Record>& records, std::size_t place,
          std::span<const Operation> others) {
        for (; place < records.size(); ++place) {
            const Record& record = records[place];
            if (record.head.kind == RecordKind::kNote && TakeNote(record)) break;
            if (!IsOutermost(record)) continue;
            if (!calls.empty() &&
                (IsOfCore(record) ||
                 std::ranges::find(others, record.head.operation) == others.end())) {
                next = &record;
                break;
            }
            calls.push_back(place);
        }
    }

    std::vector<std::size_t> calls;
    const Record* next = nullptr;  // the outermost call behind them
    std::string word;              // of the note, if there is one
    std::string digest;
    std::string path;

    std::size_t Find(const std::vector<Record>& records, Operation operation) const {
        const auto found = std::ranges::find_if(
            calls, [&](std::size_t call) { return records[call].head.operation == operation; });
        return found == calls.end() ? records.size() : *found;
    }

  private:
    // True if nothing of the event can stand behind it.
    bool TakeNote(const Record& record) {
        using namespace recorder::note;
        const auto [noted, about] = recorder::NoteOf(record);
        for (const std::string_view other : {kScene, kRead, kSettings, kOwnWork})
            if (noted == other) return false;
        word = noted;
        if (word == recorder::note::kStep) return true;
        const recorder::SceneTexts scene = recorder::SceneOf(about);
        digest = scene.digest;
        path = scene.rest;
        return true;
    }
};

std::string AsWord(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

struct Causes::Row {
    Operation first;
    Cause (Causes::*cause)(std::size_t place);
};

const std::vector<Causes::Row>& Causes::Table() {
    static const std::vector<Row> rows = {
        {Operation::CoreInterface_NotifyTimeChanged, &Causes::Time},
        {Operation::CoreInterface_ShowCore, &Causes::Show},
        {Operation::CoreInterface_ResetCore, &Causes::NewOrOpen},
        {Operation::CoreInterface_GetCoreState, &Causes::SaveOrDetach},
        {Operation::CoreInterface_SetCoreState, &Causes::Merge},
        {Operation::CoreInterface_StopCore, &Causes::Deletion},
        {Operation::CoreInterface_IsCoreRunning, &Causes::Deletion},
        {Operation::CoreInterface_GetOptionNode, &Causes::Question},
        {Operation::CoreInterface_GetOptionValue, &Causes::Question},
        {Operation::CExtendable_HandleExtension, &Causes::SaveOrDetach},
        {Operation::CExtendable_HasExtension, &Causes::Deletion},
        {Operation::NodeListener_OnNodeRemoved, &Causes::UndoOrRedo},
        {Operation::NodeListener_OnNodeRestored, &Causes::UndoOrRedo},
        {Operation::CUndo_Undo, &Causes::UndoOrRedo},
        {Operation::CUndo_Redo, &Causes::UndoOrRedo},
        {Operation::CUndo_Release, &Causes::Release},
        {Operation::Routine_detach, &Causes::Detach},
    };
    return rows;
}

Causes::Causes(const recorder::TapeSession& session) : records_(session.records), undo_(session) {}

Cause Causes::Of(std::size_t place) {
    Follow(place);
    const Operation operation = records_[place].head.operation;
    const auto row = std::ranges::find(Table(), operation, &Row::first);
    if (row == Table().end()) return Unknown("no event of the host's begins with this call");
    return (this->*row->cause)(place);
}

Cause Causes::Time(std::size_t place) {
    if (const char* const word = undo_.TakeWithTime(place)) return Repeated(word);
    return Steps("time " + TextOf(ValueReader(records_[place]).Number()));
}

Cause Causes::Show(std::size_t) {
    return Steps("press " + std::to_string(TVL::kStartButton));
}

Cause Causes::NewOrOpen(std::size_t place) {
    const Event event(records_, place, kOfAnotherScene);
    const std::size_t state = event.Find(records_, Operation::CoreInterface_SetCoreState);
    if (event.word == recorder::note::kNew || state == records_.size()) {
        const std::size_t time = event.Find(records_, Operation::CoreInterface_NotifyTimeChanged);
        const bool isReset = time < records_.size() && ValueReader(records_[time]).Number() == 0;
        return Steps(isReset ? "reset" : "new");
    }
    const bool isNoted = event.word == recorder::note::kOpened;
    const std::string path = isNoted ? event.path : SavedWith(event);
    if (path.empty()) return Unknown("a scene was opened, and the tape does not tell which");
    Cause cause = Steps("open " + AsWord(path));
    cause.digest = isNoted ? event.digest : "";
    return cause;
}

// How a scene is called that was saved.
std::string Causes::SavedAs(const Event& event) const {
    if (event.word == recorder::note::kSaved) return event.path;
    const std::size_t state = event.Find(records_, Operation::CoreInterface_GetCoreState);
    return NameAt(records_[std::min(state, event.calls.back())].head.call);
}

// How the scene is called that was saved last with what the Core is given in the event; empty if
// there is none.
std::string Causes::SavedWith(const Event& event) const {
    std::vector<std::string> given;
    for (const std::size_t call : event.calls)
        if (records_[call].head.operation == Operation::CoreInterface_SetCoreState)
            given.push_back(ValueReader(records_[call]).Tree().Write());
    const auto isGiven = [&](const std::string& part) {
        return std::ranges::any_of(
            given, [&](const std::string& text) { return text.find(part) != std::string::npos; });
    };
    const auto saved = std::find_if(saved_.rbegin(), saved_.rend(), [&](const Saved& each) {
        return !each.parts.empty() && std::ranges::all_of(each.parts, isGiven);
    });
    return saved == saved_.rend() ? std::string() : saved->name;
}

Cause Causes::SaveOrDetach(std::size_t place) {
    if (ExtensionOf(records_[place]) == TVL::kNodesBeingDeleted) return Deletion(place);
    const Event event(records_, place, kOfSaving);
    const bool isAsked =
        event.Find(records_, Operation::CoreInterface_GetCoreState) < records_.size();
    if (!isAsked && event.next && event.next->head.operation == Operation::Routine_detach)
        return Steps("detach");
    return Steps("save " + AsWord(SavedAs(event)));
}

Cause Causes::Merge(std::size_t place) {
    const Event event(records_, place, {});
    const bool isNoted = event.word == recorder::note::kMerged;
    const std::string path = isNoted ? event.path : SavedWith(event);
    if (path.empty()) return Unknown("a scene was merged, and the tape does not tell which");
    Cause cause = Steps("merge " + AsWord(path));
    cause.digest = isNoted ? event.digest : "";
    return cause;
}

// The Core is asked whether it is running whenever somebody counts keys.
Cause Causes::Deletion(std::size_t place) {
    if (place <= askedUntil_) return Question(place);
    const Event event(records_, place, kOfDeletion);
    Cause cause;
    cause.isDeletion = true;
    for (const std::size_t call : event.calls) {
        if (ExtensionOf(records_[call]) != TVL::kNodesBeingDeleted) continue;
        cause.owners.insert(records_[call].head.object);
        for (std::size_t inside = call + 1;
             inside < records_.size() && records_[inside].head.call != records_[call].head.call;
             ++inside)
            if (records_[inside].Is(RecordKind::kCall, Operation::CoreNode_Delete))
                cause.nodes.insert(records_[inside].head.object);
    }
    if (!cause.owners.empty()) return cause;
    if (event.Find(records_, Operation::CoreInterface_StopCore) < records_.size())
        return Unknown("nodes were deleted, and the tape does not tell which");
    askedUntil_ = event.calls.back();
    return Question(place);
}

Cause Causes::Question(std::size_t) {
    Cause cause;
    cause.isNothing = true;
    return cause;
}

Cause Causes::UndoOrRedo(std::size_t place) {
    if (const char* const word = undo_.Take(place)) return Repeated(word);
    return Unknown("the host undid something or did it again, and the tape tells not which");
}

Cause Causes::Release(std::size_t place) {
    const Event event(records_, place, kOfRelease);
    if (event.next && event.next->head.operation == Operation::Routine_detach) return Detach(place);
    return Unknown("the host dropped undo steps, and the tape does not tell why");
}

Cause Causes::Detach(std::size_t) {
    Cause cause;
    cause.isEnd = true;
    return cause;
}

void Causes::Follow(std::size_t place) {
    for (; followed_ < place; ++followed_) {
        const Record& record = records_[followed_];
        undo_.Follow(record);
        const auto [word, about] = recorder::NoteOf(record);
        if (word == recorder::note::kSaved && !saved_.empty())
            saved_.back().name = recorder::SceneOf(about).rest;
        const Operation operation = record.head.operation;
        if (record.head.kind == RecordKind::kAnswer && !IsOfCore(record) &&
            (operation == Operation::CoreInterface_GetCoreState ||
             operation == Operation::CExtendable_HandleExtension))
            FollowSave(record);
    }
}

// What a scene stores of the Core: the whole state, and each plug-in's.
void Causes::FollowSave(const Record& answer) {
    ValueReader values(answer);
    if (answer.head.operation == Operation::CoreInterface_GetCoreState) {
        const XMLNode state = values.Tree();
        if (!state.children.empty()) saving_.parts.push_back(state.Write());
        saving_.name = NameAt(answer.head.call);
        saved_.push_back(std::exchange(saving_, {}));
        return;
    }
    values.Skip('x');
    if (values.Letter() != 't') return;
    for (const auto& part : values.Tree().children)
        saving_.parts.push_back(part->Child("TVL_Plugin").Write());
}

}  // namespace player
