#pragma once

#include "tvl/xml_node.h"

// A text of the type "XMLFile" among the library's resources, read; an empty node if there is none.
XMLNode LoadXMLResource(int id);
