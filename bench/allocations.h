#pragma once

#include <cstddef>

// What this program, the host in it, has asked of operator new. Counting is a few instructions, and
// the same for all that is measured.
std::size_t Allocations();

// Bytes that are allocated now, as the heap rounds them.
std::size_t LiveBytes();
