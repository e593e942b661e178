#include <zlib.h>

#include <cstring>

#include "tests/scene_file/file_world.h"

// Files whose checksums are right, so that what they say has to be checked itself.
namespace {

using namespace std::string_literals;

constexpr std::size_t kHeader = 12;
constexpr std::size_t kChunkHead = 10;
constexpr std::size_t kChecksum = 4;

// What the `nth` chunk of an id has at a place of its contents instead, and what is said of it.
struct Craft {
    std::uint16_t chunk;
    int nth;
    std::size_t offset;
    std::string bytes;
    const char* told;
};

// The file with that, and the contents of the chunk.
std::pair<std::string, std::string> Crafted(std::string file, const Craft& craft) {
    int nth = craft.nth;
    for (std::size_t at = kHeader;;) {
        std::uint16_t id = 0;
        std::uint64_t length = 0;
        std::memcpy(&id, &file.at(at), sizeof id);
        std::memcpy(&length, &file.at(at + sizeof id), sizeof length);
        const std::size_t next = at + kChunkHead + length;
        if (id == craft.chunk && nth-- == 0) {
            file.replace(at + kChunkHead + craft.offset, craft.bytes.size(), craft.bytes);
            const std::string chunk = file.substr(at, next - kChecksum - at);
            const auto crc = static_cast<std::uint32_t>(
                crc32_z(0, reinterpret_cast<const Bytef*>(chunk.data()), chunk.size()));
            std::memcpy(&file.at(next - kChecksum), &crc, sizeof crc);
            return {file, chunk.substr(kChunkHead)};
        }
        at = next;
    }
}

enum : std::uint16_t { kSettings = 1, kObject, kNode, kUtility, kEnd };

// Objects: the controller and the mesh of A, those of B below it, controller and outer helper of C,
// controller and camera of D, then the inner helper and the camera's parameters. An object's class
// takes 16 bytes and its name, here "Position/Rotation/Scale", "Mesh", "Odd helper" or "Camera
// parameters"; the count of its references and their table come next. A node with a name of one
// letter has its parent at byte 4, the name at 8, flags at 13, properties at 18, controller at 26
// and object at 31.
const std::string kMany(4, '\xFF');
const std::vector<Craft> kRefused = {{kSettings, 0, 0, "\7", "type of unit"},
                                     {kSettings, 0, 7, "\x7F", "scale of the unit"},
                                     {kSettings, 0, 4, "\0\0\xC0\x7F"s, "scale of the unit"},
                                     {kSettings, 0, 8, "\0\0\0\0"s, "frame rate"},
                                     {kSettings, 0, 11, "\x80", "frame rate"},
                                     {kSettings, 0, 23, "\x7F", "animation range"},
                                     {kSettings, 0, 28, kMany, "last handle"},
                                     {kObject, 0, 12, kMany, "class name"},
                                     {kObject, 1, 20, kMany, "reference table"},
                                     {kObject, 8, 30, "\1\5\0\0\0"s, "to itself"},
                                     {kNode, 1, 0, "\0"s, "handle 0"},
                                     {kNode, 1, 0, "\1", "another node has too"},
                                     {kNode, 0, 4, "\1\0\0\0"s, "parent"},
                                     {kNode, 1, 4, "\1", "parent"},
                                     {kNode, 0, 8, kMany, "name"},
                                     {kNode, 0, 12, "\0"s, "NUL"},
                                     {kNode, 0, 13, "\4", "flags"},
                                     {kNode, 0, 18, kMany, "properties"},
                                     {kNode, 0, 22, "\1", "number of references"},
                                     {kNode, 0, 26, "\3", "unknown kind"},
                                     {kNode, 1, 26, "\0"s, "reference to nothing"},
                                     {kNode, 0, 27, "\x63", "does not hold"},
                                     {kNode, 0, 27, "\1", "controller that is none"},
                                     {kNode, 0, 31, "\1\0"s, "object that is none"},
                                     {kEnd, 0, 0, "\5", "number of chunks"},
                                     {kEnd, 0, 8, "\5", "number of chunks"}};
// Of a class that nobody knows, with a reference too many, and of a class that is no target: the
// object is kept as it is stored.
const std::vector<Craft> kKept = {{kObject, 9, 4, "\x9", "Camera of the node \"D\" does not take"},
                                  {kObject, 9, 33, "\1", "Camera of the node \"D\" does not take"},
                                  {kObject, 8, 0, "\xE0\x10\0\0U\0\0\0V\0\0\0"s, "Odd helper"}};

using CraftedFile = FileWorld;

TEST_F(CraftedFile, IsRefusedOrKeptForWhatItSays) {
    odd::written.clear();
    Start(true);
    Add("B", CreateNewTriObject(), Add("A", CreateNewTriObject()));
    auto* outer = new odd::Helper;
    outer->ReplaceReference(0, new odd::Helper);
    Add("C", outer);
    Add("D", GetCOREInterface()->CreateCameraObject(0));
    const std::string plain = Save("plain");
    const std::uint64_t digest = headless::SceneDigest();
    for (const bool isKept : {false, true}) {
        for (const Craft& craft : isKept ? kKept : kRefused) {
            const auto [bytes, contents] = Crafted(plain, craft);
            const headless::FileOutcome outcome = host->OpenScene(folder.Write("crafted", bytes));
            EXPECT_EQ(outcome.error.starts_with(File("crafted") + ": at byte "), !isKept);
            std::string told = outcome.error;
            for (const std::string& complaint : outcome.complaints)
                told += complaint;
            EXPECT_NE(told.find(craft.told), std::string::npos) << craft.told << told;
            EXPECT_TRUE(isKept ? Save("again").find(contents) != std::string::npos
                               : headless::SceneDigest() == digest)
                << craft.told;
        }
    }
}

}  // namespace
