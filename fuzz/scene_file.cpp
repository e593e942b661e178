#include <zlib.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/fuzzed_world.h"
#include "headless/scene_file_view.h"

namespace {

// docs/scene-file.md
constexpr std::size_t kHeaderBytes = 12;
constexpr std::size_t kLengthAt = 2;  // within a chunk
constexpr std::size_t kContentsAt = 10;
constexpr std::size_t kChecksumBytes = 4;

std::uint64_t Length(std::string_view chunk) {
    std::uint64_t length = 0;
    for (std::size_t i = 0; i < 8; ++i)
        length |= std::uint64_t{static_cast<std::uint8_t>(chunk[kLengthAt + i])} << (8 * i);
    return length;
}

// Puts right the checksum of each top-level chunk that is whole.
std::string WithChecksums(std::string file) {
    std::size_t at = kHeaderBytes;
    while (at + kContentsAt <= file.size()) {
        const std::uint64_t length = Length(std::string_view(file).substr(at));
        if (length < kChecksumBytes || length > file.size() - at - kContentsAt) break;
        const std::size_t end = at + kContentsAt + static_cast<std::size_t>(length);
        const std::size_t summed = end - kChecksumBytes - at;
        const auto* const bytes = reinterpret_cast<const Bytef*>(file.data() + at);
        const uLong sum = crc32(0, bytes, static_cast<uInt>(summed));
        for (std::size_t i = 0; i < kChecksumBytes; ++i)
            file[at + summed + i] = static_cast<char>(sum >> (8 * i));
        at = end;
    }
    return file;
}

void View(const std::string& path) {
    try {
        headless::ViewSceneFile(path);
    } catch (const std::runtime_error&) {
        return;  // refused in words
    }
}

void Open(FuzzedWorld& world, std::string_view bytes) {
    const std::string path = (world.Folder() / "input.scene").string();
    std::ofstream(path, std::ios::binary) << bytes;
    View(path);
    const headless::FileOutcome opened = world.Session().OpenScene(path);
    Require(opened.error.find('\n') == std::string::npos);
    world.Session().MergeScene(path);
    headless::SceneDigest();
    world.Clear();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld& world = FuzzedWorld::Get();
    const std::string_view bytes = AsText(data, size);
    Open(world, bytes);
    Open(world, WithChecksums(std::string(bytes)));
    return 0;
}
