#pragma once

#include <optional>
#include <span>
#include <string>

#include "replay/recording.h"
#include "replay/report.h"
#include "replay_core/motion/motion.h"
#include "replay_core/state/take.h"

namespace replay {

// Recording into a take that is in the scene writes over its keys at the times of the frames and
// leaves all others.

// What keeps the frames from going onto the nodes of the take, behind "the take"; empty if nothing
// does. It has to be of the capture's skeleton: its nodes have the names of the joints and hang
// below each other as they do, whatever else they hang below. And the frames have to meet the keys
// of what was recorded before, or those would stand between them.
std::string WhyNotInto(const Take& take, const Motion& motion, const Recording& recording);

// Another capture, whose frames in the take those of the recording are written over; empty if there
// is none.
std::string CaptureWrittenOver(const Take& take, const Recording& recording);

// What a take keeps, behind the last frame, of what was recorded before; nothing if that is
// nothing.
std::optional<CaptureReport::Kept> TailBehind(std::span<const Recording> recordings,
                                              double lastSeconds);

}  // namespace replay
