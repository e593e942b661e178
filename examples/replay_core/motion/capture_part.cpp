#include "replay_core/motion/capture_part.h"

#include <cmath>

#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

constexpr double kRounding = 1e-6;  // of a frame

std::string Told(const CaptureMoment& moment) {
    return moment.isSeconds ? NumberText(moment.number) + " s"
                            : "frame " + NumberText(moment.number);
}

}  // namespace

std::optional<CaptureMoment> ParseMoment(std::string_view text) {
    if (text.ends_with('s')) {
        const std::optional<double> seconds = ParseNumber(text.substr(0, text.size() - 1));
        if (!seconds || *seconds < 0) return std::nullopt;
        return CaptureMoment{*seconds, true};
    }
    const std::optional<std::size_t> frame = ParseCount(text);
    if (!frame) return std::nullopt;
    return CaptureMoment{static_cast<double>(*frame), false};
}

std::variant<FrameRange, std::string> FramesOf(const CapturePart& part, const Motion& motion) {
    const auto frames = [&](const CaptureMoment& moment) {
        return moment.isSeconds ? moment.number / motion.frameSeconds : moment.number;
    };
    const auto count = static_cast<double>(motion.frameCount);
    const double first = part.from ? std::ceil(frames(*part.from) - kRounding) : 0;
    const double last = part.to ? std::floor(frames(*part.to) + kRounding) : count - 1;
    if (first >= count || last >= count)
        return "the capture ends with frame " + std::to_string(motion.frameCount - 1) + ", at " +
               NumberText(std::round((count - 1) * motion.frameSeconds * 1e6) / 1e6) +
               " s, before " + Told(first >= count ? *part.from : *part.to);
    if (first > last) return "no frame lies from " + Told(*part.from) + " to " + Told(*part.to);
    return FrameRange{static_cast<std::size_t>(first), static_cast<std::size_t>(last) + 1};
}

}  // namespace replay
