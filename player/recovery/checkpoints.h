#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "recorder/tape/read_tape.h"
#include "tvl/xml_node.h"

namespace player {

// What a scene stores of a Core, as texts that can be compared.
struct StoredState {
    std::vector<std::string> loaded;  // what SetCoreState brings, one by one, when it is opened
    std::string whole;                // what GetCoreState gave; empty for none
    std::set<std::string> parts;      // what owners added at extension 56
};

// A moment of a session at which its scene was that of a file, or empty.
struct Checkpoint {
    enum class Kind {
        kBegan,    // the session began, with an empty scene
        kJoined,   // it began with a scene that was there before, or its beginning is not on the
                   // tape
        kEmptied,  // the scene was emptied
        kOpened,   // a file was opened
        kSaved,    // the scene was saved
    };
    Kind kind = Kind::kBegan;
    std::size_t record = 0;  // of the session: work that a file lacks is behind this one
    std::uint64_t call = 0;  // by which it can be named
    std::uint32_t milliseconds = 0;
    std::string digest;  // of the file, and its path, if the host told them
    std::string path;
    StoredState state;

    bool BeginsScene() const { return kind != Kind::kSaved; }
    bool IsEmpty() const { return kind == Kind::kBegan || kind == Kind::kEmptied; }
};

// In their order; the first is the session's beginning. Where the host told of its scenes a save
// counts only if it told that it succeeded.
std::vector<Checkpoint> CheckpointsOf(const recorder::TapeSession& session);

// Whether the host has told of its scenes.
bool HasNotes(const recorder::TapeSession& session);

// Null if there is none; of several the last one. The second goes by what is stored.
const Checkpoint* FindByDigest(const std::vector<Checkpoint>& checkpoints,
                               const std::string& digest);
const Checkpoint* FindByState(const std::vector<Checkpoint>& checkpoints, const StoredState& scene);

// The moment behind the call of that number, or behind the last one before it.
Checkpoint CheckpointAfter(const recorder::TapeSession& session, std::uint64_t call);

// A line each, with what names it, for who has to choose.
std::string LineOf(const Checkpoint& checkpoint);

// A tree as a text by which it can be compared, also once it was stored and read.
std::string Comparable(const XMLNode& tree);

// The argument of an extension that was answered on the tape, if it is a tree.
XMLNode ArgumentOfAnswer(const recorder::Record& answer);

}  // namespace player
