#pragma once

#include "host/host_api.h"

// Types of unit: 0 inches, 1 feet, 2 miles, 3 millimetres, 4 centimetres, 5 metres, 6 kilometres.
inline constexpr int UNITS_METERS = 5;

// One host unit is `scale` units of `type`.
HOST_API void GetMasterUnitInfo(int* type, float* scale);

// The size of one host unit, in units of `type`.
HOST_API double GetMasterScale(int type);
