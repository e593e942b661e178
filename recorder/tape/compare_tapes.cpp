#include "recorder/tape/compare_tapes.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

#include "recorder/tape/segments.h"
#include "recorder/tape/tape_summary.h"

namespace recorder {
namespace {

bool IsCompared(const RecordHead& head) {
    return head.kind != RecordKind::kSession && head.kind != RecordKind::kMesh &&
           !IsToldAgain(head);
}

// Steps through what of a session is compared, and numbers it.
class Walk {
  public:
    explicit Walk(const std::vector<Record>& records) : records_(records) { Settle(); }

    bool IsAtEnd() const { return place_ == records_.size(); }
    const Record& Here() const { return records_[place_]; }
    std::size_t Place() const { return place_; }

    // That of the record which has the number of this one: itself, or the call that it ends.
    std::uint64_t Number() const {
        const auto number = numbers_.find(Here().head.call);
        return number == numbers_.end() ? 0 : number->second;
    }

    void Next() {
        ++place_;
        Settle();
    }

  private:
    void Settle() {
        while (!IsAtEnd() && !IsCompared(Here().head))
            ++place_;
        if (!IsAtEnd()) numbers_.try_emplace(Here().head.call, numbers_.size() + 1);
    }

    const std::vector<Record>& records_;
    std::size_t place_ = 0;
    std::unordered_map<std::uint64_t, std::uint64_t> numbers_;
};

bool AreSameHeads(const RecordHead& one, const RecordHead& other) {
    return one.kind == other.kind && one.operation == other.operation &&
           one.object == other.object && one.thread == other.thread && one.nesting == other.nesting;
}

bool AreSameValues(const Record& one, const Record& other) {
    const SceneNote scene = ReadSceneNote(one);
    if (!scene.word.empty()) {
        const SceneNote same = ReadSceneNote(other);
        return scene.word == same.word && scene.digest == same.digest;
    }
    ValueReader ones(one);
    ValueReader others(other);
    for (const char letter : LettersOf(one.head)) {
        const auto value = ones.Skip(letter);
        if (!std::ranges::equal(value, others.Skip(letter)) && letter != 'w') return false;
    }
    return true;
}

bool AreSame(const Walk& one, const Walk& other) {
    return AreSameHeads(one.Here().head, other.Here().head) && one.Number() == other.Number() &&
           AreSameValues(one.Here(), other.Here());
}

}  // namespace

std::optional<TapeDifference> CompareTapes(const TapeContents& first, const TapeContents& second,
                                           const TapeProgress& progress) {
    constexpr std::size_t kBetween = 1024;  // records
    static const std::vector<Record> kNone;
    const auto recordsOf = [](const TapeContents& tape, std::size_t session) -> const auto& {
        return session < tape.sessions.size() ? tape.sessions[session].records : kNone;
    };
    const std::size_t sessions = std::max(first.sessions.size(), second.sessions.size());
    for (std::size_t session = 0; session < sessions; ++session) {
        Walk one(recordsOf(first, session));
        Walk other(recordsOf(second, session));
        for (; !one.IsAtEnd() && !other.IsAtEnd() && AreSame(one, other); one.Next()) {
            other.Next();
            if (progress && one.Place() % kBetween == 0 &&
                !progress(one.Place(), recordsOf(first, session).size()))
                throw std::runtime_error("given up in session " + std::to_string(session + 1));
        }
        if (!one.IsAtEnd() || !other.IsAtEnd() || session >= first.sessions.size() ||
            session >= second.sessions.size())
            return TapeDifference{session, one.Place(), other.Place()};
    }
    return std::nullopt;
}

}  // namespace recorder
