#pragma once

// The size of a host unit: `scale` units of `type`, as numbered in host/units.h.
namespace headless {

void SetMasterUnits(int type, float scale);

bool IsUnitType(int type);
double MetresPerUnit(int type, float scale);

}  // namespace headless
