#include "interchange/turns.h"

#include <cmath>
#include <numbers>

namespace interchange {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;  // in a radian
constexpr double kWholeTurn = 360;
constexpr double kHalfTurn = 180;

// Of the cosine of the middle turn: below it the rotation, which was single precision once, says
// nothing of the inner turn.
constexpr double kAxesMeet = 1e-6;

double Nearest(double degrees, double before, double step) {
    const double near = degrees + kWholeTurn * std::round((before - degrees) / kWholeTurn);
    return std::round(near / step) * step;
}

double Change(const Turns& turns, const Turns& before) {
    double change = 0;
    for (std::size_t i = 0; i < turns.size(); ++i)
        change += std::abs(turns[i] - before[i]);
    return change;
}

// The two turns that are left once the inner one is chosen.
Turns WithInner(const TVL::CMatrix4& rotation, const TurnOrder& order, double sign, double inner,
                double step, const Turns& before) {
    Turns turns{0, 0, Nearest(inner, before[2], step)};
    const TVL::CMatrix4 two = TurnAbout(order.inner, -turns[2]) * rotation;
    const double outer =
        std::atan2(sign * two[order.middle][order.inner], two[order.middle][order.middle]);
    turns[0] = Nearest(outer * kDegrees, before[0], step);
    const TVL::CMatrix4 one = two * TurnAbout(order.outer, -turns[0]);
    const double middle =
        std::atan2(sign * one[order.inner][order.outer], one[order.outer][order.outer]);
    turns[1] = Nearest(middle * kDegrees, before[1], step);
    return turns;
}

}  // namespace

TurnOrder::TurnOrder(std::string_view axes)
    : outer(axes[0] - 'X'), middle(axes[1] - 'X'), inner(axes[2] - 'X') {}

TVL::CMatrix4 TurnAbout(int axis, double degrees) {
    const double cosine = std::cos(degrees / kDegrees);
    const double sine = std::sin(degrees / kDegrees);
    const int next = (axis + 1) % 3;
    const int after = (axis + 2) % 3;
    TVL::CMatrix4 turn = TVL::CMatrix4::Identity();
    turn[next][next] = cosine;
    turn[next][after] = sine;
    turn[after][next] = -sine;
    turn[after][after] = cosine;
    return turn;
}

TVL::CMatrix4 RotationOf(const TurnOrder& order, const Turns& turns) {
    return TurnAbout(order.inner, turns[2]) * TurnAbout(order.middle, turns[1]) *
           TurnAbout(order.outer, turns[0]);
}

TVL::CMatrix4 RotationOf(const std::array<double, 4>& quaternion) {
    const auto [x, y, z, w] = quaternion;
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (z * x - w * y), 0},
             {2 * (x * y - w * z), 1 - 2 * (z * z + x * x), 2 * (y * z + w * x), 0},
             {2 * (z * x + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y), 0},
             {0, 0, 0, 1}}};
}

// The middle turn can also go past a quarter, with half a turn more of the other two.
Turns TurnsOf(const TVL::CMatrix4& rotation, const TurnOrder& order, double step,
              const Turns& before) {
    const double sign = (order.outer + 1) % 3 == order.middle ? 1 : -1;
    const double cosine =
        std::hypot(rotation[order.outer][order.outer], rotation[order.middle][order.outer]);
    const double inner = cosine < kAxesMeet
                             ? before[2]
                             : kDegrees * std::atan2(-sign * rotation[order.middle][order.outer],
                                                     rotation[order.outer][order.outer]);
    const Turns one = WithInner(rotation, order, sign, inner, step, before);
    const Turns other = WithInner(rotation, order, sign, inner + kHalfTurn, step, before);
    return Change(one, before) <= Change(other, before) ? one : other;
}

}  // namespace interchange
