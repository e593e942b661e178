#pragma once

#include <span>
#include <string>

#include "replay_core/recorder/sample_times.h"
#include "replay_core/recorder/whole_file.h"
#include "tvl/node.h"

namespace replay {

// Asks the host where nodes are and writes that as comma-separated values (RFC 4180, with LF):
// `seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz`, a row for each time and node, the times one after the
// other, with the host's names of the nodes and their world transforms in Core space, taken apart
// as transform_parts.h says. One row is held at a time. The file is the caller's to finish. The
// result is empty, or says in one line what went wrong.
std::string SamplePoses(std::span<TVL::CoreNode* const> nodes, const SampleTimes& times,
                        WholeFile& file);

}  // namespace replay
