#pragma once

#include <cstdint>

// Truncation toward zero; beyond 32 bits it saturates, and a NaN gives 0.
std::int32_t TruncatedToInt32(double value);
