#pragma once

#include <cstddef>

// How often this process has asked for memory with operator new. A test program that calls this has
// the counting operator new.
std::size_t Allocations();
