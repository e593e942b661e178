#include "command/likely_unit.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace headless {
namespace {

constexpr std::array kUnits = {
    CaptureUnit{1, "metres"},          CaptureUnit{0.01, "centimetres"},
    CaptureUnit{0.001, "millimetres"}, CaptureUnit{0.0254, "inches"},
    CaptureUnit{0.3048, "feet"},       CaptureUnit{0.056444, "units of the CMU database"}};

constexpr double kLowest = 0.3;  // metres
constexpr double kHighest = 3;
constexpr double kUsual = 1.7;

}  // namespace

bool IsNobodysHeight(double metres) {
    return metres > 0 && (metres < kLowest || metres > kHighest);
}

CaptureUnit LikelyUnit(double heightInUnits) {
    return *std::ranges::min_element(kUnits, {}, [&](const CaptureUnit& unit) {
        return std::abs(std::log(heightInUnits * unit.metres / kUsual));
    });
}

}  // namespace headless
