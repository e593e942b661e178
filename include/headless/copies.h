#pragma once

#include "headless/headless_api.h"
#include "host/reference.h"

namespace headless {

// A copy of an object, made as the host does when it clones a node: by Clone, with what it refers
// to copied at most once. The copy is the caller's until something refers to it; null if the class
// cannot copy itself.
HEADLESS_API RefTargetHandle CopyOf(ReferenceTarget& from);

}  // namespace headless
