#include "measures/core_space.h"

#include "host/units.h"

double HostUnitsPerMetre() {
    int type = 0;
    float scale = 0;
    GetMasterUnitInfo(&type, &scale);
    return GetMasterScale(type) / (GetMasterScale(UNITS_METERS) * static_cast<double>(scale));
}

TVL::CMatrix4 CoreToHostBase() {
    const double s = HostUnitsPerMetre();
    return kCoreToHostAxes * TVL::CMatrix4::Diagonal(s, s, s, 1);
}
