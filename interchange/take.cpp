#include "interchange/take.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace interchange {

Take Take::Resampled(double newFrameSeconds, bool keepsEnd) const {
    constexpr double kRounding = 1e-6;  // of a frame
    Take take = *this;
    take.frameSeconds = newFrameSeconds;
    const double frames = (EndSeconds() - startSeconds) / newFrameSeconds;
    take.frameCount = static_cast<std::size_t>(keepsEnd ? std::ceil(frames - kRounding)
                                                        : std::floor(frames + kRounding)) +
                      1;
    if (keepsEnd) take.lastSeconds = EndSeconds();
    return take;
}

std::string UniqueNames::Of(const std::string& name) {
    std::string unique = name;
    for (int number = 2; !taken_.insert(unique).second; ++number)
        unique = name + '_' + std::to_string(number);
    return unique;
}

double SkewOf(const TVL::CMatrix4& matrix) {
    const auto dot = [&](int a, int b) {
        return matrix[a][0] * matrix[b][0] + matrix[a][1] * matrix[b][1] +
               matrix[a][2] * matrix[b][2];
    };
    const auto cosine = [&](int a, int b) {
        const double lengths = std::sqrt(dot(a, a) * dot(b, b));
        return lengths > 0 ? std::abs(dot(a, b)) / lengths : 0;
    };
    return std::max({cosine(0, 1), cosine(1, 2), cosine(2, 0)});
}

void Loss::Compare(const TakeNode& joint, const TVL::CMatrix4& was, const TVL::CMatrix4& is,
                   double at) {
    const double away =
        std::hypot(is[3][0] - was[3][0], is[3][1] - was[3][1], is[3][2] - was[3][2]);
    if (!(away > metres)) return;
    metres = away;
    node = joint.name;
    seconds = at;
}

}  // namespace interchange
