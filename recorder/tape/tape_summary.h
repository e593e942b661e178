#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/tape/read_tape.h"

namespace recorder {

// A scene that came into a session or was kept from it, as a note tells it.
struct SceneNote {
    std::string word;  // of notes.h
    std::string digest;
    std::string path;
    std::uint32_t milliseconds = 0;
};

// What a session comes to.
struct SessionSummary {
    std::string moment;  // these are empty where the session's own record was dropped
    std::int32_t interface = 0;
    std::string platform;
    std::string core;
    std::string by;
    std::uint32_t milliseconds = 0;  // to the last call
    std::uint64_t calls = 0;
    std::uint64_t unanswered = 0;  // that were open when everything ended
    std::uint64_t groups = 0;      // outermost undo groups that were ended and not cancelled
    std::uint64_t takes = 0;       // recordings that were begun
    std::vector<SceneNote> scenes;

    // Of what the host had when it ended: since it last opened, emptied or saved its scene.
    std::uint64_t groupsSince = 0;
    bool hasOpenGroup = false;
};

SessionSummary Summarise(const TapeSession& session);

// Empty of another note.
SceneNote ReadSceneNote(const Record& record);

}  // namespace recorder
