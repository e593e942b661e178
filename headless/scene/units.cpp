#include "headless/scene/units.h"

#include <array>
#include <cstddef>

#include "host/units.h"

namespace headless {
namespace {

constexpr double kInchesPerMetre = 39.37;

// How many of each type make a metre.
constexpr std::array<double, 7> kPerMetre{
    kInchesPerMetre, kInchesPerMetre / 12, kInchesPerMetre / 63360, 1000, 100, 1, 0.001,
};

struct MasterUnits {
    int type = 0;
    float scale = 1;
};
MasterUnits masterUnits;

double PerMetre(int type) {
    return kPerMetre[static_cast<std::size_t>(type)];
}

}  // namespace

bool IsUnitType(int type) {
    return type >= 0 && type < static_cast<int>(kPerMetre.size());
}

double MetresPerUnit(int type, float scale) {
    return static_cast<double>(scale) / PerMetre(type);
}

void SetMasterUnits(int type, float scale) {
    if (IsUnitType(type) && scale > 0) masterUnits = {type, scale};
}

}  // namespace headless

void GetMasterUnitInfo(int* type, float* scale) {
    if (type) *type = headless::masterUnits.type;
    if (scale) *scale = headless::masterUnits.scale;
}

double GetMasterScale(int type) {
    using namespace headless;
    if (!IsUnitType(type)) return 1;
    return static_cast<double>(masterUnits.scale) * PerMetre(type) / PerMetre(masterUnits.type);
}
