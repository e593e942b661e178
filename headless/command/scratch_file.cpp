#include "command/scratch_file.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

namespace headless {
namespace {

// Two runs at the same time do not meet.
std::string Mark() {
    return std::to_string(std::random_device{}());
}

std::string Place(const std::string& target) {
    if (!target.empty()) return target + ".part" + Mark();
    std::error_code none;
    return (std::filesystem::temp_directory_path(none) / ("lumiset" + Mark() + ".txt")).string();
}

}  // namespace

ScratchFile::ScratchFile(std::string target) : target_(std::move(target)), path_(Place(target_)) {}

ScratchFile::~ScratchFile() {
    std::error_code absent;
    std::filesystem::remove(path_, absent);
}

std::string ScratchFile::Keep() {
    std::error_code error;
    std::filesystem::rename(path_, target_, error);
    return error ? target_ + ": " + error.message() : std::string();
}

}  // namespace headless
