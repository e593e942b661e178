#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "recorder/stream/record_reader.h"
#include "recorder/tape/tape_file.h"

namespace recorder {

// What a tape holds from one attachment of a Core to its end, or to the death of its process.
struct TapeSession {
    std::vector<Record>
        records;            // in their order; the first one is the session's, if that is there
    bool isWhole = false;   // nothing of it was dropped or damaged; its end can be missing
    bool isClosed = false;  // it ended with the answer to `detach`

    // The content of each mesh that records name; where its record was dropped there is none.
    std::unordered_map<MeshId, Record> meshes;
};

struct TapeContents {
    std::string path;
    std::vector<TapeSession> sessions;   // the oldest first; at least one, unless it may be blank
    std::vector<std::string> damages;    // what was passed over, and where, a line each
    std::uint64_t bytes = 0;             // of the file
    std::shared_ptr<const void> memory;  // in which the records lie
};

// Whether a tape will do that nothing is on: a file of nothing but zeros, as whoever ended between
// setting room aside and the first record has left it, or with a head and no record.
enum class MayBeBlank { kNo, kYes };

// Every record of it has good values. Throws a std::runtime_error that names the file and says why
// nothing of it can be read, or how far it was when it was given up. A torn end is no damage.
TapeContents ReadTape(const std::string& path, MayBeBlank blank = MayBeBlank::kNo,
                      TapeProgress progress = {});

// The same of bytes that are there, such as those of a file; `name` is what errors call them.
TapeContents ReadTape(const std::string& name, const std::vector<std::uint8_t>& bytes);

}  // namespace recorder
