#pragma once

#include <string>
#include <string_view>

#include "replay_core/motion/capture_halves.h"
#include "replay_core/motion/motion.h"
#include "tests/support/captures.h"

// A capture of two joints, an end site, nine channels and two frames on 20 lines.
inline constexpr std::string_view kStep =
    "HIERARCHY\n"
    "ROOT Hip\n"
    "{\n"
    "\tOFFSET 0 7 0\n"
    "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
    "\tJOINT Left Leg\n"
    "\t{\n"
    "\t\tOFFSET 1 -2 0.5\n"
    "\t\tCHANNELS 3 Zrotation Yrotation Xrotation\n"
    "\t\tEnd Site\n"
    "\t\t{\n"
    "\t\t\tOFFSET 0 -3 0\n"
    "\t\t}\n"
    "\t}\n"
    "}\n"
    "MOTION\n"
    "Frames: 2\n"
    "Frame Time: 0.25\n"
    "0 10 0 0 0 0 90 0 0\n"
    "1 10 2 0 45 0 0 30 -60\n";

// Reads a capture that must be whole; otherwise the test fails with the error and the motion is
// empty.
replay::Motion ReadWhole(std::string_view text);

// Reads a capture called "step.bvh", and tells of the frames that it has and what is odd about it,
// or why it is refused.
std::string Reading(std::string_view text, replay::CutCapture cut = replay::CutCapture::kRefused);

// The text with the only place of `from` replaced.
std::string Replaced(std::string_view text, std::string_view from, std::string_view to);

// All of a motion in one line.
std::string Told(const replay::Motion& motion);
