#pragma once

#include <memory>

#include "tvl/xml_node.h"

// Puts the child at the end of the parent's children and returns it. A child with neither name nor
// children is dropped, and the result is the parent.
XMLNode& AppendXMLChild(XMLNode& parent, std::unique_ptr<XMLNode> child);
