#pragma once

#include <string>
#include <vector>

#include "tvl/node.h"

// Brings the objects of another scene file into the host's scene. The result is a snapshot node for
// each merged node and for its ancestors, the caller's to give back: in the order of the selection
// that the host's merge makes, each node with its parents behind it, none twice. An entry is null
// if the host does not know its node any more. The user's selection is as before.
//
// The merge is no part of an undo group: the hold that is open is closed with what it has so far,
// and a new one takes its place. A file that is missing or damaged is told in the trace alone, and
// the result is what the host could bring in, as a rule nothing.
std::vector<TVL::CNode*> MergeModels(const std::string& path);
