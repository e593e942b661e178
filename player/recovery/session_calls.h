#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "player/perform.h"
#include "recorder/tape/read_tape.h"

namespace player {

// The calls of a session with what was answered to them.
class SessionCalls {
  public:
    explicit SessionCalls(const recorder::TapeSession& session);

    // A record; none where everything ended in the call. Also of what was thrown.
    std::optional<std::size_t> EndOf(const Record& call) const;

    // Null if there is none.
    const Record* AnswerTo(const Record& call) const;

    // A status of 0, or none because everything ended in the call.
    bool IsDone(const Record& call) const;

    // The object that was answered; 0 for none.
    ObjectId Given(const Record& call) const;

    // Nodes that the call has given, and nobody had before.
    std::vector<ObjectId> NewNodes(const Record& call) const;

  private:
    const std::vector<Record>& records_;
    std::unordered_map<std::uint64_t, std::size_t> ends_;
};

}  // namespace player
