#pragma once

#include <cstdint>
#include <string>

// Scene time in ticks; GetTicksPerFrame × GetFrameRate ticks make a second.
using TimeValue = std::int32_t;

// The host's text: bytes, no encoding.
using HostString = std::string;

using SClass_ID = std::uint32_t;

// Identifies a class of plug-in within its super class. Scene files store it.
struct Class_ID {
    std::uint32_t partA = 0;
    std::uint32_t partB = 0;

    friend constexpr bool operator==(const Class_ID&, const Class_ID&) = default;
};

// Super classes.
inline constexpr SClass_ID GEOMOBJECT_CLASS_ID = 0x10;
inline constexpr SClass_ID CAMERA_CLASS_ID = 0x20;
inline constexpr SClass_ID SHAPE_CLASS_ID = 0x40;
inline constexpr SClass_ID HELPER_CLASS_ID = 0x50;
inline constexpr SClass_ID UTILITY_CLASS_ID = 0x1020;
inline constexpr SClass_ID GUP_CLASS_ID = 0x10E0;
inline constexpr SClass_ID CTRL_FLOAT_CLASS_ID = 0x9003;
inline constexpr SClass_ID CTRL_MATRIX3_CLASS_ID = 0x9008;

// Classes of the host's own.
inline constexpr Class_ID kTriObjectClassId{9, 0};
inline constexpr Class_ID kLinearFloatClassId{0x2001, 0};
inline constexpr Class_ID kPositionRotationScaleClassId{0x2005, 0};
