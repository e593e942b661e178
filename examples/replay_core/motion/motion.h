#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace replay {

// A motion capture as plain data, in the units in which it was captured: lengths in capture units
// (a scale to metres is the reader's to know), angles in degrees, Y up, right-handed.

// One number that a frame gives a joint: a place along an axis, or a turn about it.
enum class Channel : std::uint8_t {
    kXposition,
    kYposition,
    kZposition,
    kXrotation,
    kYrotation,
    kZrotation,
};

inline constexpr std::size_t kNoJoint = std::numeric_limits<std::size_t>::max();

struct Joint {
    std::string name;                // as in the file: two joints may share one
    std::size_t parent = kNoJoint;   // index of an earlier joint; kNoJoint for a root
    std::array<double, 3> offset{};  // from the parent's joint, along the parent's axes
    std::vector<Channel> channels;   // in the order of the file, which is the order of the turns
    std::size_t firstChannel = 0;    // where the joint's numbers begin within a frame
};

// The tip of a chain, such as the end of a toe: a place that follows its joint.
struct EndSite {
    std::size_t joint = kNoJoint;
    std::array<double, 3> offset{};
};

struct Motion {
    // The numbers of one frame, channelCount of them. `frame` is less than frameCount.
    std::span<const double> Frame(std::size_t frame) const {
        return std::span(values).subspan(frame * channelCount, channelCount);
    }

    std::vector<Joint> joints;  // a parent stands before its children
    std::vector<EndSite> endSites;
    std::size_t channelCount = 0;  // of all joints together
    std::size_t frameCount = 0;
    double frameSeconds = 0;     // from one frame to the next, more than 0
    std::vector<double> values;  // frame after frame
    std::string oddity;          // in which the file is not as it should be, a line; empty for none
};

// Frames of a capture from `first` up to, but not including, `end`.
struct FrameRange {
    std::size_t Count() const { return end - first; }

    std::size_t first = 0;
    std::size_t end = 0;  // more than `first`
};

// A name for each joint that no other joint has. The first joint of a name keeps it; further ones
// are numbered from 2, as in "Hand", "Hand_2", past every name that the capture has itself.
std::vector<std::string> UniqueJointNames(const Motion& motion);

}  // namespace replay
