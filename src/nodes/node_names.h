#pragma once

#include <memory>
#include <string>

#include "nodes/max_node.h"
#include "tvl/xml_node.h"

// How scene nodes are named: by what the host shows, and in trees by their number.

// The host's name of a node; empty where it has none, or there is no node.
std::string NameInScene(INode* hostNode);

// Host names pass through a buffer of 1024 bytes, so that 1023 of a longer name remain: fewer, if
// the cut would fall inside a UTF-8 character.
std::string CutHostName(std::string name);

// A number stands in an element whose first child is a text that holds the host's handle in
// decimal. A handle is good within one scene; in another it can meet a stranger.

// <max>123</max>
XMLNode NodeReference(INode& hostNode);

// A snapshot node without source for the scene node that such an element names. Null if the host
// knows no such node, or the text is anything but one number of 32 bits.
std::unique_ptr<CMAXNode> NodeFor(const XMLNode& reference);
