#include "replay_core/motion/read_motion.h"

#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/narrow_path.h"
#include "replay_core/motion/capture_halves.h"
#include "replay_core/motion/capture_text.h"

namespace replay {
namespace {

std::optional<ReadError> ReadBothHalves(CaptureText& text, Motion& motion, CutCapture cut) {
    if (auto error = ReadHierarchy(text, motion)) return error;
    return ReadFrames(text, motion, cut);
}

}  // namespace

std::variant<Motion, ReadError> ReadMotion(const std::string& path, CutCapture cut) {
    // A device or a pipe would have no size to hold the memory to.
    std::error_code status;
    if (!std::filesystem::is_regular_file(platform::FromNarrow(path), status)) {
        return ReadError{path, 0, "there is no file of this name"};
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return ReadError{path, 0, "the file cannot be opened"};
    return ReadMotion(stream, path, cut);
}

std::variant<Motion, ReadError> ReadMotion(std::istream& stream, const std::string& file,
                                           CutCapture cut) try {
    CaptureText text(stream, file);
    Motion motion;
    std::optional<ReadError> error = ReadBothHalves(text, motion, cut);
    if (stream.bad()) return text.Error("the file cannot be read on from here");
    if (error) return *std::move(error);
    return motion;
} catch (const std::bad_alloc&) {
    return ReadError{file, 0, "there is not enough memory for this capture"};
}

}  // namespace replay
