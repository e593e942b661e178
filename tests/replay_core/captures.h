#pragma once

#include <gtest/gtest.h>

#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"
#include "tests/support/allocations.h"

// A capture of two joints, an end site, nine channels and two frames on 20 lines.
inline constexpr std::string_view kStep =
    "HIERARCHY\nROOT Hip\n{\n\tOFFSET 0 7 0\n"
    "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
    "\tJOINT Left Leg\n\t{\n\t\tOFFSET 1 -2 0.5\n"
    "\t\tCHANNELS 3 Zrotation Yrotation Xrotation\n"
    "\t\tEnd Site\n\t\t{\n\t\t\tOFFSET 0 -3 0\n\t\t}\n\t}\n}\n"
    "MOTION\nFrames: 2\nFrame Time: 0.25\n"
    "0 10 0 0 0 0 90 0 0\n"
    "1 10 2 0 45 0 0 30 -60\n";

inline std::variant<replay::Motion, replay::ReadError> ReadStep(
    std::string_view text, replay::CutCapture cut = replay::CutCapture::kRefused) {
    std::istringstream stream{std::string(text)};
    return replay::ReadMotion(stream, "step.bvh", cut);
}

// Reads a capture that must be whole; otherwise the test fails with the error and the motion is
// empty.
inline replay::Motion ReadWhole(std::string_view text) {
    auto result = ReadStep(text);
    const auto* const error = std::get_if<replay::ReadError>(&result);
    EXPECT_FALSE(error) << replay::Describe(*error);
    return error ? replay::Motion() : std::get<replay::Motion>(std::move(result));
}
