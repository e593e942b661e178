#include "replay_core/motion/read_frames.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

constexpr std::size_t kFewestBytesOfNumber = 2;  // a digit and what parts it from the next

std::optional<ReadError> ReadFrameCount(CaptureText& text, Motion& motion) {
    if (auto error = text.Expect("Frames")) return error;
    if (auto error = text.Expect(":")) return error;
    if (auto error = text.ExpectCount(motion.frameCount)) return error;
    if (motion.frameCount == 0) return text.Error("the capture has no frames");
    return std::nullopt;
}

std::optional<ReadError> ReadFrameTime(CaptureText& text, Motion& motion) {
    if (auto error = text.Expect("Frame")) return error;
    if (auto error = text.Expect("Time")) return error;
    if (auto error = text.Expect(":")) return error;
    if (auto error = text.ExpectNumber(motion.frameSeconds)) return error;
    if (motion.frameSeconds <= 0) return text.Error("the frame time must be more than 0 seconds");
    if (const std::string_view more = text.NextWordOfLine(); !more.empty()) {
        return text.Unexpected("the end of the line", more);
    }
    return std::nullopt;
}

// The announced count is believed as far as there are bytes to hold it.
void ReserveValues(const CaptureText& text, Motion& motion) {
    const std::size_t mostFrames =
        text.BytesLeft() / kFewestBytesOfNumber / motion.channelCount + 1;
    motion.values.reserve(std::min(motion.frameCount, mostFrames) * motion.channelCount);
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

}  // namespace

std::optional<ReadError> ReadFrames(CaptureText& text, Motion& motion) {
    if (auto error = ReadFrameCount(text, motion)) return error;
    if (auto error = ReadFrameTime(text, motion)) return error;
    ReserveValues(text, motion);
    for (std::size_t frame = 1; frame <= motion.frameCount; ++frame) {
        if (!text.NextLine()) {
            return text.Error("the file ends after " + std::to_string(frame - 1) + " of " +
                              std::to_string(motion.frameCount) + " frames");
        }
        if (auto error = ReadFrame(text, frame, motion)) return error;
    }
    if (text.NextLine()) {
        return text.Error("announced frames: " + std::to_string(motion.frameCount) +
                          ", but more follows");
    }
    return std::nullopt;
}

}  // namespace replay
