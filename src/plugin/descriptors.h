#pragma once

#include "host/class_desc.h"

// The classes that this library offers to the host. Their order is the index by which the host asks
// for them; the class ids stand in scene files.
inline constexpr int kDescriptorCount = 5;

// Null for an index out of range. The descriptors are the library's, and stay as long as it does.
ClassDesc* DescriptorAt(int index);
