#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tvl/core_element.h"
#include "tvl/mesh.h"
#include "tvl/node.h"

// New scene nodes for the Core, and the way back to them. A created node is real, hangs below
// `parent` if there is one, shows as "<plug-in name>_<name>" in the host, and gets the adaptor's
// controllers where kOptimisedControllers says so. Inside an undo group its creation becomes an
// undo record, and the listener hears of it. `parent` and `listener` may be null; an owner that is
// null or has no plug-in record gives the host name no plug-in name.

// A free camera, with cone and horizon line shown.
TVL::CNode* CreateLensNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                           TVL::NodeListener* listener);

// A triangle-mesh object with red wires; null if the host gives no object or no node.
TVL::CNode* CreateHelperNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                             const TVL::CMesh& mesh, TVL::NodeListener* listener);

// The first real node of this owner and this name (the Core's name, not the host's), or null.
TVL::CNode* FindNode(const TVL::CoreElement* owner, std::string_view name);

// All real nodes of this owner, in order of creation.
std::vector<TVL::CNode*> GetNodes(const TVL::CoreElement* owner);
