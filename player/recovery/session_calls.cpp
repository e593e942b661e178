#include "player/recovery/session_calls.h"

namespace player {

using recorder::ValueReader;

SessionCalls::SessionCalls(const recorder::TapeSession& session) : records_(session.records) {
    for (std::size_t index = 0; index < records_.size(); ++index)
        if (records_[index].IsEnd()) ends_.emplace(records_[index].head.call, index);
}

std::optional<std::size_t> SessionCalls::EndOf(const Record& call) const {
    const auto found = ends_.find(call.head.call);
    if (found == ends_.end()) return std::nullopt;
    return found->second;
}

const Record* SessionCalls::AnswerTo(const Record& call) const {
    const auto end = EndOf(call);
    const bool isAnswer = end && records_[*end].head.kind == RecordKind::kAnswer;
    return isAnswer ? &records_[*end] : nullptr;
}

bool SessionCalls::IsDone(const Record& call) const {
    const Record* const answer = AnswerTo(call);
    return !answer || ValueReader(*answer).Whole() == 0;
}

ObjectId SessionCalls::Given(const Record& call) const {
    const Record* const answer = AnswerTo(call);
    const bool givesOne = recorder::RowOf(call.head.operation).answered == "o";
    return answer && givesOne ? ValueReader(*answer).Object() : 0;
}

std::vector<ObjectId> SessionCalls::NewNodes(const Record& call) const {
    const Record* const answer = AnswerTo(call);
    const Operation operation = call.head.operation;
    if (!answer || operation == Operation::AdaptorInterface_FindNode ||
        operation == Operation::AdaptorInterface_GetNodes)
        return {};
    ValueReader answered(*answer);
    const std::string_view letters = recorder::RowOf(operation).answered;
    if (letters == "O") return answered.Objects();
    const bool isObject = letters == "o" || (letters == "xx" && answered.Letter() == 'o');
    return isObject ? std::vector{answered.Object()} : std::vector<ObjectId>();
}

}  // namespace player
