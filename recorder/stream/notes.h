#pragma once

#include <algorithm>
#include <string_view>

#include "recorder/stream/record_reader.h"

// What whoever drives the host can tell a tape beside the calls that cross the boundary, since it
// alone knows it: a word, and what it is about. A tape of a host that tells nothing has none but
// for "read". A step is told ahead of the calls that come of it, the others on scenes behind these,
// and only if they were done.
namespace recorder {
namespace note {

inline constexpr char kSettings[] = "settings";  // of the host, inside the call that attaches
inline constexpr char kStep[] = "step";          // a step that is done now, in the words of `run`
inline constexpr char kOpened[] =
    "opened";  // a scene: its digest in hexadecimal, a blank, the path
inline constexpr char kMerged[] = "merged";  // the same
inline constexpr char kSaved[] = "saved";    // the same, of a save that succeeded: a checkpoint
inline constexpr char kNew[] = "new";        // the scene was emptied
inline constexpr char kScene[] = "scene";  // one that travels along: its digest, a blank, its bytes
inline constexpr char kRead[] = "read";    // the recorder's own, inside the Core's call that merges
                                           // a file: its digest, a blank, the path
inline constexpr char kOwnWork[] = "own work";  // in words: what the host did, and no step tells

}  // namespace note

// Both lie in the record; empty of another one.
struct NoteTexts {
    std::string_view word;
    std::string_view about;
};
inline NoteTexts NoteOf(const Record& record) {
    if (record.head.kind != RecordKind::kNote) return {};
    ValueReader values(record);
    const std::string_view word = values.Text();
    return {word, values.Text()};
}

// What a note on a scene is about: its digest, and its path or, if it travels along, its bytes.
struct SceneTexts {
    std::string_view digest;
    std::string_view rest;
};
inline SceneTexts SceneOf(std::string_view about) {
    const std::size_t blank = std::min(about.find(' '), about.size());
    return {about.substr(0, blank), about.substr(std::min(blank + 1, about.size()))};
}

}  // namespace recorder
