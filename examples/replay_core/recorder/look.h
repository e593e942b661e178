#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/progress_line.h"
#include "replay/report.h"
#include "replay_core/recorder/text_file.h"
#include "tvl/adaptor_interface.h"

// What is told of nodes in the scene. Nothing is changed or kept.
namespace replay {

// The nodes with these handles, whosever they are, in their order.
std::vector<NodeReport> LookAtNodes(TVL::AdaptorInterface& adaptor,
                                    std::span<const std::uint32_t> handles, double seconds);

// Evenly spaced times, in seconds.
struct SampleTimes {
    double At(std::size_t index) const { return start + static_cast<double>(index) * step; }

    double start = 0;
    double step = 1;        // above 0
    std::size_t count = 1;  // at least 1, at most kMostSampleTimes
};

// More is a slip of the hand: a day at 100 frames a second.
inline constexpr std::size_t kMostSampleTimes = 10'000'000;

// Reads START:END:STEP: the times START, START + STEP and so on up to END. The last one may pass
// END by a millionth of a step, so that no rounding loses it. Nothing if that makes no sense or
// makes too many.
std::optional<SampleTimes> ParseSampleTimes(std::string_view text);

// Asks the host where nodes are and writes that as comma-separated values (RFC 4180, with LF):
// `seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz`, a row for each time and node, the times one after the
// other, with the host's names of the nodes and their world transforms in Core space, taken apart
// as tvl/transform_parts.h says. One row is held at a time. The file is the caller's to finish. The
// result is empty, or says in one line what went wrong. A time is a step of the progress; it can be
// given up.
std::string SamplePoses(std::span<TVL::CoreNode* const> nodes, const SampleTimes& times,
                        TextFile& file, platform::ProgressLine& progress);

}  // namespace replay
