#pragma once

#include <string>

#include "headless/session.h"
#include "recorder/tape/read_tape.h"

namespace player {

// What the note on the host's settings is about (recorder/stream/notes.h): those that the living
// host has now. The frame rate, ticks per frame, type of unit and scale, parted by blanks.
std::string SettingsNote();

// Those of a session; the usual ones where it has no such note that can be read.
headless::SessionSettings SettingsOf(const recorder::TapeSession& session);

}  // namespace player
