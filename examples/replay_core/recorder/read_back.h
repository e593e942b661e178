#pragma once

#include <string>

#include "platform/progress_line.h"
#include "replay/report.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/record_take.h"
#include "replay_core/recorder/text_file.h"

namespace replay {

struct ReadBack {
    std::string error;  // one line; empty if every joint answered

    // The largest distance, over all joints and recorded frames, between where the host has the
    // joint at the frame's time and where it was meant to be, in double: where the capture's own
    // kinematics put it, lifted onto the ground where there is one.
    double maxPositionErrorMetres = 0;

    // The same for a camera that followed.
    double maxFieldOfViewErrorDegrees = 0;
    double maxTargetDistanceErrorMetres = 0;

    CaptureReport::Figure figure;  // as it was meant to be
};

// Asks the host where the joints are, and what the camera's lens is. With a file, writes them into
// it as comma-separated values (RFC 4180, with LF): `frame,seconds,joint,x,y,z`, a row for each
// frame and joint, the time that of the scene, the place in Core space, metres. The file is the
// caller's to finish; null for none. A frame is a step of the progress; it can be given up.
ReadBack ReadTake(const Motion& motion, const RecordedTake& recorded, TextFile* csv,
                  platform::ProgressLine& progress);

}  // namespace replay
