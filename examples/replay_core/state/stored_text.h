#pragma once

#include <string>
#include <string_view>

#include "tvl/xml_node.h"

namespace replay {

// Texts of our own that can hold anything, such as paths, in an element that becomes text and comes
// back. An attribute loses the '>', and a text child is lost if it is nothing but blanks. So a text
// with a '>' becomes a child element of the name `key`, and any other one an attribute. The element
// has no text children beside.
void SetStoredText(XMLNode& element, std::string_view key, std::string_view text);

// The empty text if there is none.
std::string StoredText(const XMLNode& element, std::string_view key);

}  // namespace replay
