#include "recorder/tape/tape_summary.h"

#include <algorithm>

#include "recorder/stream/notes.h"

namespace recorder {
namespace {

void TakeFacts(const Record& record, SessionSummary& summary) {
    ValueReader values(record);
    summary.moment = values.Text();
    summary.interface = values.Whole();
    summary.platform = values.Text();
    summary.core = values.Text();
    summary.by = values.Text();
}

// Counts undo groups as they nest. A cancel anywhere takes the whole nest back.
class Groups {
  public:
    void Take(const Record& answer, SessionSummary& summary) {
        const Operation operation = answer.head.operation;
        if (operation == Operation::AdaptorInterface_BeginUndoGroup) ++open_;
        const bool isCancel = operation == Operation::AdaptorInterface_CancelUndoGroup;
        if (!isCancel && operation != Operation::AdaptorInterface_EndUndoGroup) return;
        if (open_ == 0) return;
        isCancelled_ |= isCancel;
        if (--open_ > 0) return;
        if (!isCancelled_) {
            ++summary.groups;
            ++summary.groupsSince;
        }
        isCancelled_ = false;
    }
    bool HasOpen() const { return open_ > 0; }

  private:
    int open_ = 0;
    bool isCancelled_ = false;
};

void TakeNote(const Record& record, SessionSummary& summary) {
    SceneNote scene = ReadSceneNote(record);
    if (scene.word.empty()) return;
    scene.milliseconds = record.head.milliseconds;
    if (scene.word != note::kMerged) summary.groupsSince = 0;
    summary.scenes.push_back(std::move(scene));
}

}  // namespace

SceneNote ReadSceneNote(const Record& record) {
    const auto [word, about] = NoteOf(record);
    if (word == note::kNew) return {.word = std::string(word), .digest = {}, .path = {}};
    if (word != note::kOpened && word != note::kMerged && word != note::kSaved) return {};
    const auto [digest, path] = SceneOf(about);
    return {.word = std::string(word), .digest = std::string(digest), .path = std::string(path)};
}

SessionSummary Summarise(const TapeSession& session) {
    SessionSummary summary;
    Groups groups;
    std::uint64_t ended = 0;
    for (const Record& record : session.records) {
        const RecordHead& head = record.head;
        summary.milliseconds = std::max(summary.milliseconds, head.milliseconds);
        if (head.kind == RecordKind::kSession) TakeFacts(record, summary);
        if (head.kind == RecordKind::kNote) TakeNote(record, summary);
        if (head.kind == RecordKind::kCall) {
            ++summary.calls;
            if (BeginsRecording(head.operation)) ++summary.takes;
        }
        if (head.kind == RecordKind::kAnswer) groups.Take(record, summary);
        if (record.IsEnd()) ++ended;
    }
    summary.unanswered = summary.calls > ended ? summary.calls - ended : 0;
    summary.hasOpenGroup = groups.HasOpen();
    return summary;
}

}  // namespace recorder
