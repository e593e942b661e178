#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "replay_core/motion/capture_halves.h"
#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

constexpr std::size_t kFewestBytesOfNumber = 2;  // a digit and what parts it from the next

std::optional<ReadError> ReadFrameCount(CaptureText& text, std::size_t& announced) {
    if (auto error = text.Expect("Frames")) return error;
    if (auto error = text.Expect(":")) return error;
    if (auto error = text.ExpectCount(announced)) return error;
    if (announced == 0) return text.Error("the capture has no frames");
    return std::nullopt;
}

// A capture of so many whole frames a second, as nearly all are, has their time cut to a few
// decimals: 0.0083333 means 120. Taken by the letter it would leave each frame beside the tick that
// it belongs to. Rates of television, such as 29.97, are farther from any whole one.
double FrameSeconds(double written) {
    constexpr double kLastDecimal = 1e-6;
    constexpr double kFastest = 250;  // faster ones lie so close that any time would be near to one
    const double rate = std::round(1 / written);
    if (!(rate >= 1 && rate <= kFastest)) return written;
    return std::abs(written - 1 / rate) < kLastDecimal ? 1 / rate : written;
}

std::optional<ReadError> ReadFrameTime(CaptureText& text, Motion& motion) {
    if (auto error = text.Expect("Frame")) return error;
    if (auto error = text.Expect("Time")) return error;
    if (auto error = text.Expect(":")) return error;
    if (auto error = text.ExpectNumber(motion.frameSeconds)) return error;
    if (motion.frameSeconds <= 0) return text.Error("the frame time must be more than 0 seconds");
    motion.frameSeconds = FrameSeconds(motion.frameSeconds);
    if (const std::string_view more = text.NextWordOfLine(); !more.empty()) {
        return text.Unexpected("the end of the line", more);
    }
    return std::nullopt;
}

// The announced count is believed as far as there are bytes to hold it.
void ReserveValues(const CaptureText& text, std::size_t announced, Motion& motion) {
    const std::size_t mostFrames =
        text.BytesLeft() / kFewestBytesOfNumber / motion.channelCount + 1;
    motion.values.reserve(std::min(announced, mostFrames) * motion.channelCount);
}

std::optional<ReadError> ReadFrame(CaptureText& text, std::size_t frame, Motion& motion) {
    for (std::size_t channel = 0; channel < motion.channelCount; ++channel) {
        const std::string_view word = text.NextWordOfLine();
        if (word.empty()) {
            return text.Error("frame " + std::to_string(frame) + " holds " +
                              std::to_string(channel) + " of " +
                              std::to_string(motion.channelCount) + " numbers");
        }
        const std::optional<double> number = ParseNumber(word);
        if (!number) return text.Unexpected("a number", word);
        motion.values.push_back(*number);
    }
    if (const std::string_view more = text.NextWordOfLine(); !more.empty()) {
        return text.Error("frame " + std::to_string(frame) + " holds more than " +
                          std::to_string(motion.channelCount) + " numbers, found " + Quoted(more));
    }
    return std::nullopt;
}

// Goes through the lines of numbers to the end of the text, and counts in `frameCount` those that
// are whole. Stops at one that is not: the result says what is wrong with it.
std::optional<ReadError> ReadLines(CaptureText& text, Motion& motion) {
    std::optional<ReadError> broken;
    while (!broken && text.NextLine()) {
        broken = ReadFrame(text, motion.frameCount + 1, motion);
        if (!broken) ++motion.frameCount;
    }
    motion.values.resize(motion.frameCount * motion.channelCount);
    return broken;
}

std::string Oddity(const CaptureText& text, std::size_t announced, std::size_t there,
                   const std::optional<ReadError>& broken) {
    std::string oddity;
    const auto add = [&](const std::string& what) {
        oddity += (oddity.empty() ? "" : "; ") + what;
    };
    if (there != announced)
        add("announced frames: " + std::to_string(announced) + ", there are " +
            std::to_string(there));
    if (broken) add("the last line is left out: " + broken->what);
    if (text.EndedAtControlZ()) add("a Ctrl-Z ends the text");
    return oddity;
}

}  // namespace

std::optional<ReadError> ReadFrames(CaptureText& text, Motion& motion, CutCapture cut) {
    std::size_t announced = 0;
    if (auto error = ReadFrameCount(text, announced)) return error;
    if (auto error = ReadFrameTime(text, motion)) return error;
    ReserveValues(text, announced, motion);
    std::optional<ReadError> broken = ReadLines(text, motion);
    if (broken && text.NextLine()) return broken;
    const std::size_t enough = cut == CutCapture::kTaken ? 1 : announced;
    if (motion.frameCount < enough) {
        if (broken) return broken;
        return text.Error("the file ends after " + std::to_string(motion.frameCount) + " of " +
                          std::to_string(announced) + " frames");
    }
    motion.oddity = Oddity(text, announced, motion.frameCount, broken);
    return std::nullopt;
}

}  // namespace replay
