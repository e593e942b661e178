#include "headless/viewport/ground_grid.h"

#include <algorithm>
#include <cmath>

namespace headless {
namespace {

// Across.
constexpr int kFewestSteps = 4;
constexpr int kMostSteps = 12;
constexpr int kPixelsForOne = 40;

// Around what pictures are about: a part of its extent, and at least so much.
constexpr double kMargin = 0.2;
constexpr double kLeastMarginInMetres = 1;

constexpr Colour kLine{0.29F, 0.31F, 0.34F};
constexpr Colour kAxis{0.42F, 0.44F, 0.48F};

// The smallest step of the row that covers the span with few enough lines. Far from the origin the
// margins can be lost in rounding.
double StepFor(double span, int width) {
    const double metre = UnitsPerMetre();
    const int steps = std::clamp(width / kPixelsForOne, kFewestSteps, kMostSteps);
    const double least = std::max(span / metre, kLeastMarginInMetres) / steps;
    const double decade = std::pow(10, std::floor(std::log10(least)));
    for (const double step : {1.0, 2.0, 5.0})
        if (step * decade >= least) return step * decade * metre;
    return 10 * decade * metre;
}

float Snapped(double place, double step, double (*round)(double)) {
    return static_cast<float>(round(place / step) * step);
}

double Floor(double x) {
    return std::floor(x);
}

double Ceil(double x) {
    return std::ceil(x);
}

void SetLineColour(DrawWindow& window, const Colour& colour) {
    window.setColor(LINE_COLOR, colour.red, colour.green, colour.blue);
}

}  // namespace

GroundGrid GridBelow(const Box3& framed, int width) {
    Box3 all = framed;
    if (all.IsEmpty()) all += Point3();
    const double margin = std::max({kMargin * (double{all.pmax.x} - double{all.pmin.x}),
                                    kMargin * (double{all.pmax.y} - double{all.pmin.y}),
                                    kLeastMarginInMetres * UnitsPerMetre()});
    const double lowerX = double{all.pmin.x} - margin, upperX = double{all.pmax.x} + margin;
    const double lowerY = double{all.pmin.y} - margin, upperY = double{all.pmax.y} + margin;
    const double step = StepFor(std::max(upperX - lowerX, upperY - lowerY), width);
    return {step, Box3({Snapped(lowerX, step, Floor), Snapped(lowerY, step, Floor), 0},
                       {Snapped(upperX, step, Ceil), Snapped(upperY, step, Ceil), 0})};
}

void DrawGrid(const GroundGrid& grid, DrawWindow& window) {
    const auto& [lower, upper] = std::pair(grid.area.pmin, grid.area.pmax);
    const auto step = [&](float at) { return std::llround(double{at} / grid.step); };
    const auto place = [&](long long index) {
        SetLineColour(window, index == 0 ? kAxis : kLine);
        return static_cast<float>(static_cast<double>(index) * grid.step);
    };
    for (long long i = step(lower.x); i <= step(upper.x); ++i) {
        const float x = place(i);
        window.DrawLine({x, lower.y, 0}, {x, upper.y, 0});
    }
    for (long long i = step(lower.y); i <= step(upper.y); ++i) {
        const float y = place(i);
        window.DrawLine({lower.x, y, 0}, {upper.x, y, 0});
    }
}

}  // namespace headless
