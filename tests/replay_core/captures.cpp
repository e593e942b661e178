#include "tests/replay_core/captures.h"

#include <gtest/gtest.h>

#include <sstream>
#include <variant>

#include "replay_core/motion/read_motion.h"

namespace {

std::variant<replay::Motion, replay::ReadError> Read(std::string_view text,
                                                     replay::CutCapture cut) {
    std::istringstream stream{std::string(text)};
    return replay::ReadMotion(stream, "step.bvh", cut);
}

}  // namespace

replay::Motion ReadWhole(std::string_view text, replay::CutCapture cut) {
    auto result = Read(text, cut);
    if (const auto* error = std::get_if<replay::ReadError>(&result)) {
        ADD_FAILURE() << replay::Describe(*error);
        return {};
    }
    return std::get<replay::Motion>(std::move(result));
}

std::string ReadRefused(std::string_view text, replay::CutCapture cut) {
    const auto result = Read(text, cut);
    const auto* error = std::get_if<replay::ReadError>(&result);
    if (error == nullptr) {
        ADD_FAILURE() << "read as whole:\n" << text;
        return {};
    }
    return replay::Describe(*error);
}

std::string Replaced(std::string_view text, std::string_view from, std::string_view to) {
    const std::size_t place = text.find(from);
    EXPECT_TRUE(place != std::string_view::npos && text.find(from, place + 1) == std::string::npos)
        << "not there exactly once: " << from;
    return std::string(text).replace(place, from.size(), to);
}
