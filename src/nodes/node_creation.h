#pragma once

#include <string>
#include <vector>

#include "tvl/core_element.h"
#include "tvl/mesh.h"
#include "tvl/node.h"

// New scene nodes for the Core. A created node is real, hangs below `parent` if there is one, shows
// as "<plug-in name>_<name>" in the host, and gets the adaptor's controllers where
// kOptimisedControllers says so. Inside an undo group its creation becomes an undo record, and the
// listener hears of it. `parent` and `listener` may be null; an owner that is null or has no
// plug-in record gives the host name no plug-in name.

// A free camera, with cone and horizon line shown.
TVL::CNode* CreateLensNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                           TVL::NodeListener* listener);

// A triangle-mesh object with red wires; null if the host gives no object or no node.
TVL::CNode* CreateHelperNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                             const TVL::CMesh& mesh, TVL::NodeListener* listener);

// Brings the objects of another scene file into the host's scene. The result is a snapshot node for
// each merged node and for its ancestors, the caller's to give back: in the order of the selection
// that the host's merge makes, each node with its parents behind it, none twice. An entry is null
// if the host does not know its node any more. The user's selection is as before.
//
// The merge is no part of an undo group: the hold that is open is closed with what it has so far,
// and a new one takes its place. A file that is missing or damaged is told in the trace alone, and
// the result is what the host could bring in, as a rule nothing.
std::vector<TVL::CNode*> MergeModels(const std::string& path);
