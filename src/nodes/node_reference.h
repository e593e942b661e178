#pragma once

#include <memory>

#include "nodes/max_node.h"
#include "tvl/xml_node.h"

// Scene nodes by their number in trees: an element whose first child is a text that holds the
// host's handle in decimal. A handle is good within one scene; in another it can meet a stranger.

// <max>123</max>
XMLNode NodeReference(INode& hostNode);

// A snapshot node without source for the scene node that such an element names. Null if the host
// knows no such node, or the text is anything but one number of 32 bits.
std::unique_ptr<CMAXNode> NodeFor(const XMLNode& reference);
