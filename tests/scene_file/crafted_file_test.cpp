#include <cstring>

#include "tests/scene_file/file_world.h"

// Files whose checksums are right, so that what they say has to be checked itself.
namespace {

constexpr std::size_t kHeader = 12;
constexpr std::size_t kChunkHead = 10;
constexpr std::size_t kChecksum = 4;

std::uint32_t Crc32(const std::string& bytes, std::size_t begin, std::size_t end) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = begin; i < end; ++i) {
        crc ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (0xEDB88320U & -(crc & 1));
    }
    return ~crc;
}

// Where the contents of the `nth` chunk of an id begin, and where its checksum stands.
struct Place {
    std::size_t begin = 0;
    std::size_t checksum = 0;
};

Place Find(const std::string& bytes, std::uint16_t wanted, int nth) {
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

struct Craft {
    std::uint16_t chunk;
    int nth;
    std::size_t offset;  // within the contents
    std::vector<unsigned char> bytes;
    const char* complaint;
};

enum : std::uint16_t { kSettings = 1, kObject, kNode, kUtility, kEnd };

// In the scene of two nodes, A with B below it. Objects: the controller and the mesh of A, then
// those of B. A class takes 16 bytes and its name, here "Position/Rotation/Scale" or "Mesh".
constexpr std::size_t kName = 8;
constexpr std::size_t kFlags = 13;
constexpr std::size_t kProperties = 18;
constexpr std::size_t kController = 26;
constexpr std::size_t kMesh = 31;
const Craft kCrafts[] = {
    {kSettings, 0, 0, {7}, "unknown type of unit"},
    {kSettings, 0, 4, {0, 0, 0xC0, 0x7F}, "scale of the unit"},
    {kSettings, 0, 4, {0, 0, 0, 0x80}, "scale of the unit"},
    {kSettings, 0, 8, {0, 0, 0, 0x80}, "frame rate"},
    {kSettings, 0, 12, {0xFF, 0xFF, 0xFF, 0x7F}, "frame rate"},
    {kSettings, 0, 20, {1, 0, 0, 0, 0, 0, 0, 0}, "animation range"},
    {kSettings, 0, 28, {0xFF, 0xFF, 0xFF, 0xFF}, "last handle"},
    {kSettings, 0, 28, {1}, "last handle"},
    {kObject, 0, 12, {0xFF, 0xFF, 0xFF, 0xFF}, "class name"},
    {kObject, 1, 20, {0xFF, 0xFF, 0xFF, 0xFF}, "reference table"},
    {kNode, 1, 0, {0}, "handle 0"},
    {kNode, 0, 4, {1, 0, 0, 0}, "parent"},
    {kNode, 1, 4, {1}, "parent"},
    {kNode, 0, kName, {0xFF, 0xFF, 0xFF, 0xFF}, "name"},
    {kNode, 0, kName + 4, {0}, "NUL"},
    {kNode, 0, kFlags, {4}, "flags"},
    {kNode, 0, kProperties, {0xFF, 0xFF, 0xFF, 0x7F}, "properties"},
    {kNode, 0, kProperties + 4, {1}, "number of references"},
    {kNode, 0, kController, {3}, "unknown kind"},
    {kNode, 1, kController, {0}, "a reference to nothing"},
    {kNode, 0, kController + 1, {9}, "does not hold"},
    {kNode, 0, kController + 1, {1}, "controller that is none"},
    {kNode, 0, kController, {2, 1}, "controller that is none"},
    {kNode, 0, kMesh, {1, 0}, "object that is none"},
    {kNode, 1, kMesh, {2, 0}, "object that is none"},
    {kEnd, 0, 0, {5}, "another number of chunks"},
    {kEnd, 0, 8, {1}, "another number of chunks"},
};

class CraftedFile : public FileWorld {
  protected:
    std::string SavePlain() {
        odd::Utility::text.clear();
        Start(Classes::kKnown);
        Interface& host = *GetCOREInterface();
        INode* a = host.CreateObjectNode(CreateNewTriObject());
        a->SetName("A");
        INode* b = host.CreateObjectNode(CreateNewTriObject());
        b->SetName("B");
        a->AttachChild(b, 0);
        return Save("plain");
    }

    // The error of opening the bytes with one field changed and the checksum put right.
    headless::FileOutcome Open(std::string bytes, const Craft& craft) {
        const Place place = Find(bytes, craft.chunk, craft.nth);
        for (std::size_t i = 0; i < craft.bytes.size(); ++i)
            bytes[place.begin + craft.offset + i] = static_cast<char>(craft.bytes[i]);
        const std::uint32_t crc = Crc32(bytes, place.begin - kChunkHead, place.checksum);
        std::memcpy(&bytes[place.checksum], &crc, sizeof crc);
        WriteBytes("crafted", bytes);
        return Host().OpenScene(File("crafted"));
    }
};

TEST_F(CraftedFile, IsRefusedForWhatItSays) {
    const std::string plain = SavePlain();
    for (const Craft& craft : kCrafts) {
        const std::string error = Open(plain, craft).error;
        EXPECT_TRUE(error.starts_with(File("crafted") + ": at byte ")) << error;
        EXPECT_NE(error.find(craft.complaint), std::string::npos) << craft.complaint << error;
    }
    std::string twice = plain;
    twice.replace(Find(plain, kNode, 1).begin, 4, plain, Find(plain, kNode, 0).begin, 4);
    EXPECT_NE(Open(twice, {kNode, 1, 0, {}, ""}).error.find("another node has too"),
              std::string::npos);
    EXPECT_EQ(headless::Nodes().size(), 2U);
}

// A camera whose parameters are of a class that nobody knows, then ones that hold more than they
// can read.
TEST_F(CraftedFile, KeepsAnObjectWithWhatItWouldNotReferTo) {
    SavePlain();
    GetCOREInterface()->CreateObjectNode(GetCOREInterface()->CreateCameraObject(0));
    const std::string plain = Save("plain");
    constexpr int kParameters = 6;
    constexpr std::size_t kIds = 4;
    constexpr std::size_t kCount = 33;  // of references, behind the class "Camera parameters"
    for (const Craft& craft : {Craft{kObject, kParameters, kIds, {9}, ""},
                               Craft{kObject, kParameters, kCount, {1}, ""}}) {
        const headless::FileOutcome outcome = Open(plain, craft);
        EXPECT_EQ(outcome.error, "");
        ASSERT_FALSE(outcome.complaints.empty());
        EXPECT_NE(outcome.complaints.back().find("Camera of the node \"Camera01\" does not take"),
                  std::string::npos);
        const std::string again = Save("again");
        const std::string crafted = ReadFile(File("crafted"));
        const Place kept = Find(crafted, kObject, kParameters);
        const std::string parameters = crafted.substr(kept.begin, kept.checksum - kept.begin);
        EXPECT_NE(again.find(parameters), std::string::npos);
    }
}

// References that lead in a circle, and an object of a class that is no target of references.
TEST_F(CraftedFile, MakesNoCirclesAndCreatesNoUtilities) {
    SavePlain();
    auto* outer = new odd::Helper;
    auto* inner = new odd::Helper;
    outer->ReplaceReference(0, inner);
    GetCOREInterface()->CreateObjectNode(outer)->SetName("C");
    const std::string plain = Save("plain");
    constexpr int kInner = 6;
    constexpr std::size_t kTable = 30;  // behind the class "Odd helper" and the count
    const auto object = [](unsigned char index) {
        return std::vector<unsigned char>{1, index, 0, 0, 0};
    };
    for (const auto target : std::vector<unsigned char>{5, 6}) {
        const std::string error = Open(plain, {kObject, kInner, kTable, object(target), ""}).error;
        EXPECT_NE(error.find("back to itself"), std::string::npos) << error;
    }
    const headless::FileOutcome outcome =
        Open(plain, {kObject, kInner, 0, {0xE0, 0x10, 0, 0, 0x55, 0, 0, 0, 0x56, 0, 0, 0}, ""});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(Save("again"), ReadFile(File("crafted")));
}

}  // namespace
