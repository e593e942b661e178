#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "headless/scene/time_and_units.h"
#include "headless/scene_file/chunk_fields.h"
#include "headless/scene_file/file_progress.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_document.h"
#include "headless/storage/checksum.h"
#include "headless/storage/chunks.h"

namespace headless {
namespace {

StoredClass ReadClass(FieldReader& fields) {
    StoredClass type;
    type.superClass = fields.Number<std::uint32_t>("a super class");
    type.id.partA = fields.Number<std::uint32_t>("a class id");
    type.id.partB = fields.Number<std::uint32_t>("a class id");
    type.name = fields.Text("a class name");
    return type;
}

std::vector<StoredReference> ReadReferences(FieldReader& fields) {
    std::vector<StoredReference> references(fields.Count(kReferenceBytes, "a reference table"));
    for (StoredReference& reference : references) {
        const auto kind = fields.Number<std::uint8_t>("a reference");
        fields.Require(kind <= static_cast<std::uint8_t>(StoredTarget::kNode),
                       "a reference to an unknown kind of target");
        reference.kind = static_cast<StoredTarget>(kind);
        reference.index = fields.Number<std::uint32_t>("a reference");
        fields.Require(reference.kind != StoredTarget::kNothing || reference.index == 0,
                       "a reference to nothing that has an index");
    }
    return references;
}

StoredSettings ReadSettings(FieldReader& fields) {
    StoredSettings settings;
    settings.unitType = fields.Number<std::int32_t>("the type of unit");
    fields.Require(IsUnitType(settings.unitType), "an unknown type of unit");
    settings.unitScale = fields.Float("the scale of the unit");
    fields.Require(std::isfinite(settings.unitScale) && settings.unitScale > 0,
                   "the scale of the unit must be a positive number");
    settings.frameRate = fields.Number<std::int32_t>("the frame rate");
    settings.ticksPerFrame = fields.Number<std::int32_t>("the ticks per frame");
    fields.Require(IsClock(settings.frameRate, settings.ticksPerFrame),
                   "a frame rate and ticks per frame that are too small or too large");
    settings.time = fields.Number<std::int32_t>("the current time");
    const auto first = fields.Number<std::int32_t>("the animation range");
    const auto last = fields.Number<std::int32_t>("the animation range");
    settings.range = {first, last};
    fields.Require(!settings.range.Empty(), "an animation range that ends before it starts");
    settings.lastHandle = fields.Number<std::uint32_t>("the last handle");
    fields.Require(settings.lastHandle <= kLastStoredHandle, "a last handle that leaves no others");
    fields.ExpectEnd();
    return settings;
}

StoredObject ReadObject(FieldReader& fields) {
    StoredObject object;
    object.position = fields.Rest().begin;
    object.type = ReadClass(fields);
    object.references = ReadReferences(fields);
    object.bytes = fields.Rest();
    return object;
}

void ReadProperties(FieldReader& fields, StoredNode& node) {
    constexpr std::size_t kEmptyPair = 8;
    const std::uint32_t count = fields.Count(kEmptyPair, "a table of properties");
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string key = fields.Text("a property's key");
        const bool rises = node.userProperties.empty() || node.userProperties.back().first < key;
        fields.Require(rises, "properties that are not in the order of their keys");
        std::string value = fields.Text("a property's value");
        node.userProperties.emplace_back(std::move(key), std::move(value));
    }
}

StoredNode ReadNode(FieldReader& fields) {
    StoredNode node;
    node.position = fields.Rest().begin;
    node.handle = fields.Number<std::uint32_t>("a handle");
    fields.Require(node.handle != 0, "a node with the handle 0");
    node.parent = fields.Number<std::uint32_t>("a parent");
    node.name = fields.Text("a node's name");
    fields.Require(node.name.find('\0') == std::string::npos, "a node's name with a NUL in it");
    const auto flags = fields.Number<std::uint8_t>("a node's flags");
    fields.Require((flags & ~(kHiddenFlag | kSelectedFlag)) == 0, "unknown flags of a node");
    node.isHidden = (flags & kHiddenFlag) != 0;
    node.isSelected = (flags & kSelectedFlag) != 0;
    node.wireColour = fields.Number<std::uint32_t>("a wire colour");
    ReadProperties(fields, node);
    node.references = ReadReferences(fields);
    fields.Require(node.references.size() == kNodeReferences, "a node's number of references");
    fields.ExpectEnd();
    return node;
}

StoredUtility ReadUtility(FieldReader& fields) {
    StoredUtility utility;
    utility.type = ReadClass(fields);
    utility.chunks = fields.Rest();
    return utility;
}

void ReadEnd(FieldReader& fields, const SceneDocument& document) {
    const auto expect = [&fields](std::size_t count, const char* what) {
        fields.Require(fields.Number<std::uint32_t>(what) == count,
                       "the file has another number of chunks than its end says");
    };
    expect(document.objects.size(), "the number of objects");
    expect(document.nodes.size(), "the number of nodes");
    expect(document.utilities.size(), "the number of utilities");
    fields.ExpectEnd();
}

// Walks along the chunks of the file.
class DocumentReader {
  public:
    DocumentReader(ByteSource& source, const std::string& path) : source_(source), path_(path) {}

    SceneDocument Read() {
        ReadHeader();
        while (lastChunk_ != kEndChunk)
            ReadChunk();
        if (position_ != source_.Size()) Fail("there are bytes behind the end chunk");
        TellDone("Checking", position_, position_);
        return std::move(document_);
    }

  private:
    void ReadHeader() {
        std::array<std::byte, kSceneHeaderBytes> header;
        const auto magic = std::as_bytes(std::span(kSceneMagic));
        if (source_.Size() < header.size()) Fail("the file is too short for a scene file");
        ReadBytes(header);
        if (!std::equal(magic.begin(), magic.end(), header.begin())) Fail("this is no scene file");
        position_ = magic.size();
        const auto version = static_cast<std::uint32_t>(
            FromLittleEndian(header.data() + magic.size(), sizeof(std::uint32_t)));
        if (version > kSceneVersion)
            Fail("the file has version " + std::to_string(version) +
                 ", which is newer than this program");
        if (version != kSceneVersion) Fail("there is no such version of scene files");
        position_ = header.size();
    }

    void ReadChunk() {
        std::array<std::byte, kChunkHeaderBytes> header;
        const std::uint64_t left = source_.Size() - position_;
        if (left == 0) Fail("the file ends without its end chunk");
        if (left < header.size()) Fail("the file ends within the head of a chunk");
        ReadBytes(header);
        const auto id = static_cast<std::uint16_t>(FromLittleEndian(header.data(), kChunkIdBytes));
        const std::uint64_t length =
            FromLittleEndian(header.data() + kChunkIdBytes, kChunkLengthBytes);
        if (length > left - header.size()) Fail("a chunk reaches beyond the end of the file");
        if (length < kChecksumBytes) Fail("a chunk is too short for its checksum");
        const std::uint64_t begin = position_ + header.size();
        CheckBytes(begin + length - kChecksumBytes);
        CheckOrder(id);
        FieldReader fields(source_, path_, {begin, begin + length - kChecksumBytes});
        ReadFields(id, fields);
        lastChunk_ = id;
        position_ = begin + length;
    }

    // From the head of the chunk up to its checksum, which stands at `end`.
    void CheckBytes(std::uint64_t end) {
        const std::uint32_t checksum = ChecksumUpTo(end);
        std::array<std::byte, kChecksumBytes> stored;
        if (source_.ReadAt(end, stored) != stored.size()) Fail("the file cannot be read");
        if (FromLittleEndian(stored.data(), stored.size()) != checksum)
            Fail("the bytes of a chunk do not have its checksum");
    }

    std::uint32_t ChecksumUpTo(std::uint64_t end) {
        Checksum checksum;
        block_.resize(kSummedBytes);
        for (std::uint64_t at = position_; at < end; at += kSummedBytes) {
            TellDone("Checking", at, source_.Size());
            const auto bytes =
                std::span(block_).first(static_cast<std::size_t>(std::min(end - at, kSummedBytes)));
            if (source_.ReadAt(at, bytes) != bytes.size()) Fail("the file cannot be read");
            checksum.Append(bytes);
        }
        return checksum.Value();
    }

    void CheckOrder(std::uint16_t id) {
        if (id == 0 || id > kEndChunk) Fail("an unknown chunk " + std::to_string(id));
        const bool isFirst = lastChunk_ == 0;
        if (isFirst != (id == kSettingsChunk) || id < lastChunk_)
            Fail("the chunks are not in their order");
    }

    void ReadFields(std::uint16_t id, FieldReader& fields) {
        if (id == kSettingsChunk) document_.settings = ReadSettings(fields);
        if (id == kObjectChunk) document_.objects.push_back(ReadObject(fields));
        if (id == kNodeChunk) document_.nodes.push_back(ReadNode(fields));
        if (id == kUtilityChunk) document_.utilities.push_back(ReadUtility(fields));
        if (id == kEndChunk) ReadEnd(fields, document_);
    }

    void ReadBytes(std::span<std::byte> bytes) {
        if (source_.ReadAt(position_, bytes) != bytes.size()) Fail("the file cannot be read");
    }

    [[noreturn]] void Fail(const std::string& what) const { FailAt(path_, position_, what); }

    // So many at once that the source reads them without a block of its own, and few enough to be
    // summed while they are near to the processor.
    static constexpr std::uint64_t kSummedBytes = std::uint64_t{128} * 1024;

    ByteSource& source_;
    const std::string& path_;
    std::vector<std::byte> block_;
    std::uint64_t position_ = 0;
    std::uint16_t lastChunk_ = 0;
    SceneDocument document_;
};

}  // namespace

SceneDocument ReadDocument(ByteSource& source, const std::string& path) {
    return DocumentReader(source, path).Read();
}

}  // namespace headless
