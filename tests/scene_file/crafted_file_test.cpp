#include <cstring>
#include <utility>

#include "tests/scene_file/file_world.h"

// Files whose checksums are right, so that what they say has to be checked itself.
namespace {

constexpr std::size_t kHeader = 12;
constexpr std::size_t kChunkHead = 10;
constexpr std::size_t kChecksum = 4;

std::uint32_t Crc32(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (0xEDB88320U & -(crc & 1));
    }
    return ~crc;
}

// Where the contents of the `nth` chunk of an id begin, and where its checksum stands.
std::pair<std::size_t, std::size_t> Find(const std::string& bytes, std::uint16_t wanted, int nth) {
    for (std::size_t at = kHeader; at < bytes.size();) {
        std::uint16_t id = 0;
        std::uint64_t length = 0;
        std::memcpy(&id, &bytes[at], sizeof id);
        std::memcpy(&length, &bytes[at + sizeof id], sizeof length);
        const std::size_t begin = at + kChunkHead;
        if (id == wanted && nth-- == 0) return {begin, begin + length - kChecksum};
        at = begin + length;
    }
    ADD_FAILURE() << "no such chunk " << wanted;
    return {};
}

// What stands in one place instead, and what is said of it. Some files are opened all the same, and
// keep an object as it is stored.
struct Craft {
    std::uint16_t chunk;
    int nth;
    std::size_t offset;  // within the contents
    std::vector<unsigned char> bytes;
    const char* told;
    bool isKept = false;
};

enum : std::uint16_t { kSettings = 1, kObject, kNode, kUtility, kEnd };

// Objects: the controller and the mesh of A, those of B below it, controller and outer helper of C,
// controller and camera of D, then the inner helper and the camera's parameters. An object's class
// takes 16 bytes and its name, here "Position/Rotation/Scale", "Mesh", "Odd helper" or "Camera
// parameters"; the count of its references and their table come next. A node with a name of one
// letter has its parent at byte 4, the name at 8, flags at 13, properties at 18, controller at 26
// and object at 31.
constexpr int kOuter = 5;
constexpr int kInner = 8;
constexpr int kParameters = 9;
const Craft kCrafts[] = {
    {kSettings, 0, 0, {7}, "unknown type of unit"},
    {kSettings, 0, 4, {0, 0, 0xC0, 0x7F}, "scale of the unit"},
    {kSettings, 0, 8, {0, 0, 0, 0x80}, "frame rate"},
    {kSettings, 0, 12, {0xFF, 0xFF, 0xFF, 0x7F}, "frame rate"},
    {kSettings, 0, 20, {1, 0, 0, 0, 0, 0, 0, 0}, "animation range"},
    {kSettings, 0, 28, {0xFF, 0xFF, 0xFF, 0xFF}, "last handle"},
    {kSettings, 0, 28, {1}, "last handle"},
    {kObject, 0, 12, {0xFF, 0xFF, 0xFF, 0xFF}, "class name"},
    {kObject, 1, 20, {0xFF, 0xFF, 0xFF, 0xFF}, "reference table"},
    {kObject, kInner, 30, {1, kOuter, 0, 0, 0}, "back to itself"},
    {kObject, kInner, 30, {1, kInner, 0, 0, 0}, "back to itself"},
    {kNode, 1, 0, {0}, "handle 0"},
    {kNode, 1, 0, {1}, "another node has too"},
    {kNode, 0, 4, {1, 0, 0, 0}, "parent"},
    {kNode, 1, 4, {1}, "parent"},
    {kNode, 0, 8, {0xFF, 0xFF, 0xFF, 0xFF}, "name"},
    {kNode, 0, 12, {0}, "NUL"},
    {kNode, 0, 13, {4}, "flags"},
    {kNode, 0, 18, {0xFF, 0xFF, 0xFF, 0x7F}, "properties"},
    {kNode, 0, 22, {1}, "number of references"},
    {kNode, 0, 26, {3}, "unknown kind"},
    {kNode, 1, 26, {0}, "a reference to nothing"},
    {kNode, 0, 27, {99}, "does not hold"},
    {kNode, 0, 27, {1}, "controller that is none"},
    {kNode, 0, 26, {2, 1}, "controller that is none"},
    {kNode, 0, 31, {1, 0}, "object that is none"},
    {kEnd, 0, 0, {5}, "another number of chunks"},
    {kEnd, 0, 8, {1}, "another number of chunks"},
    // Of a class that nobody knows, with a reference too many, and of a class that is no target.
    {kObject, kParameters, 4, {9}, "Camera of the node \"D\" does not take", true},
    {kObject, kParameters, 33, {1}, "Camera of the node \"D\" does not take", true},
    {kObject, kInner, 0, {0xE0, 0x10, 0, 0, 0x55, 0, 0, 0, 0x56, 0, 0, 0}, "Odd helper", true},
};

using CraftedFile = FileWorld;

TEST_F(CraftedFile, IsRefusedOrKeptForWhatItSays) {
    odd::Utility::written.clear();
    Start(Classes::kKnown);
    Add("B", CreateNewTriObject(), Add("A", CreateNewTriObject()));
    auto* outer = new odd::Helper;
    outer->ReplaceReference(0, new odd::Helper);
    Add("C", outer);
    Add("D", GetCOREInterface()->CreateCameraObject(0));
    const std::string plain = Save("plain");
    for (const Craft& craft : kCrafts) {
        std::string bytes = plain;
        const auto [begin, checksum] = Find(bytes, craft.chunk, craft.nth);
        std::memcpy(&bytes[begin + craft.offset], craft.bytes.data(), craft.bytes.size());
        const std::string contents = bytes.substr(begin, checksum - begin);
        const std::uint32_t crc = Crc32(bytes.substr(begin - kChunkHead, kChunkHead) + contents);
        std::memcpy(&bytes[checksum], &crc, sizeof crc);

        const headless::FileOutcome outcome = host->OpenScene(folder.Write("crafted", bytes));
        EXPECT_EQ(outcome.error.starts_with(File("crafted") + ": at byte "), !craft.isKept);
        std::string told = outcome.error;
        for (const std::string& complaint : outcome.complaints)
            told += complaint;
        EXPECT_NE(told.find(craft.told), std::string::npos) << craft.told << told;
        EXPECT_TRUE(!craft.isKept || Save("again").find(contents) != std::string::npos);
    }
}

}  // namespace
