#pragma once

#include <optional>
#include <string>

#include "player/live_objects.h"
#include "recorder/tape/read_tape.h"

namespace player {

// What came of a call that was made on a living adaptor: the values of its answer in the tape's
// terms, or what was thrown in place of them.
struct Performed {
    std::vector<std::uint64_t> values;
    std::optional<std::string> thrown;
};

// Whether a call is one that the Core makes: on the adaptor, or on an object of the adaptor's.
bool IsOfCore(const Record& call);

// Makes a recorded call of the Core's once more, with the living objects that stand for those of
// the tape, and meshes of the session's; one whose record was dropped with its segment is empty.
// A call on an object that is bound to none has no effect and answers 0 or nothing, as the
// recorder's own proxies do for what has ended.
Performed Perform(const Record& call, LiveObjects& objects, const recorder::TapeSession& session);

// Whether two rows of values of an operation are the same, to the bits of a number. Objects are the
// same if they stand for each other; see LiveObjects::Match. Which window it is says nothing, nor
// where a ray came out that hit nothing.
bool Match(std::string_view letters, std::span<const std::uint64_t> onTape,
           std::span<const std::uint64_t> here, LiveObjects& objects);

}  // namespace player
