#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "chunks/whole_value.h"
#include "scene_state/state_chunk.h"
#include "scene_state/state_format.h"
#include "tvl/base64_buffer.h"

// The older form of a plug-in's state, inside the chunk in which it stands:
//
//   any id                 container: first any chunk with the type, then any with the name
//   556                    container
//     557                  container, in any order; chunks of other ids are skipped
//       11   text          not used
//       12   text          the input profile, as XML
//       22   i32 and bytes a block of data, after its length
//     558                  container of entries, nothing else
//       23                 one scene node; chunks of other ids are skipped
//         40 u32           its handle
//         41 text          its name

namespace {

constexpr std::uint16_t kBodyChunk = 556;
constexpr std::uint16_t kDataChunk = 557;
constexpr std::uint16_t kUnusedText = 11;
constexpr std::uint16_t kProfileText = 12;
constexpr std::uint16_t kDataBlock = 22;
constexpr std::uint16_t kNodesChunk = 558;
constexpr std::uint16_t kNodeEntry = 23;
constexpr std::uint16_t kHandle = 40;
constexpr std::uint16_t kNodeName = 41;

constexpr const char* kVersion = "2.5";

// The next chunk of the present level, open for as long as this lives; so whoever gives up leaves
// the reader on the level on which it was.
class OpenedChunk {
  public:
    explicit OpenedChunk(ILoad& load) : load_(load), isOpen_(load.OpenChunk() == IO_OK) {}
    ~OpenedChunk() { Close(); }
    OpenedChunk(const OpenedChunk&) = delete;
    OpenedChunk& operator=(const OpenedChunk&) = delete;

    bool IsOpen() const { return isOpen_; }
    bool Is(std::uint16_t id) const { return isOpen_ && Id() == id; }
    std::uint16_t Id() const { return id_; }

    // Goes on with the next chunk of the level.
    void Next() {
        Close();
        isOpen_ = load_.OpenChunk() == IO_OK;
        id_ = isOpen_ ? load_.CurChunkID() : id_;
    }

  private:
    void Close() {
        if (isOpen_) load_.CloseChunk();
        isOpen_ = false;
    }

    ILoad& load_;
    bool isOpen_;
    std::uint16_t id_ = isOpen_ ? load_.CurChunkID() : std::uint16_t{0};
};

bool ReadText(ILoad& load, std::string& text) {
    char* read = nullptr;
    if (load.ReadCStringChunk(&read) != IO_OK || !read) return false;
    text = read;
    return true;
}

// Memory grows with what is there, not with the length that is announced.
bool ReadBytes(ILoad& load, std::uint32_t count, std::vector<std::uint8_t>& bytes) {
    constexpr std::uint32_t kPiece = 1 << 16;
    while (count > 0) {
        const std::uint32_t piece = std::min(count, kPiece);
        const std::size_t before = bytes.size();
        bytes.resize(before + piece);
        std::uint32_t read = 0;
        if (load.Read(bytes.data() + before, piece, &read) != IO_OK || read != piece) return false;
        count -= piece;
    }
    return true;
}

bool ReadDataBlock(ILoad& load, XMLNode& plugin) {
    std::int32_t length = 0;
    std::vector<std::uint8_t> bytes;
    if (!ReadWhole(load, length) || length < 0) return false;
    if (!ReadBytes(load, static_cast<std::uint32_t>(length), bytes)) return false;
    if (!bytes.empty())
        plugin.AddChild(XMLNode("savedata", Base64Buffer(bytes.data(), length).ToText()));
    return true;
}

bool ReadChildText(ILoad& load, const char* element, XMLNode& plugin) {
    const OpenedChunk chunk(load);
    std::string text;
    if (!chunk.IsOpen() || !ReadText(load, text)) return false;
    plugin.AddChild(XMLNode(element, text));
    return true;
}

bool ReadTypeAndName(ILoad& load, XMLNode& plugin) {
    const OpenedChunk names(load);
    return names.IsOpen() && ReadChildText(load, "type", plugin) &&
           ReadChildText(load, kNameElement, plugin);
}

bool ReadData(ILoad& load, XMLNode& plugin, std::string& profile) {
    const OpenedChunk data(load);
    if (!data.Is(kDataChunk)) return false;
    std::string unused;
    for (OpenedChunk chunk(load); chunk.IsOpen(); chunk.Next()) {
        if (chunk.Id() == kUnusedText && !ReadText(load, unused)) return false;
        if (chunk.Id() == kProfileText && !ReadText(load, profile)) return false;
        if (chunk.Id() == kDataBlock && !ReadDataBlock(load, plugin)) return false;
    }
    return true;
}

// An entry that lacks name or handle has it from the entry before.
struct OlderNode {
    std::string name;
    std::optional<std::uint32_t> handle;
    bool isNamed = false;  // by its own entry
};

bool ReadNode(ILoad& load, OlderNode& node) {
    node.isNamed = false;
    for (OpenedChunk chunk(load); chunk.IsOpen(); chunk.Next()) {
        if (chunk.Id() == kHandle && !ReadWhole(load, node.handle.emplace())) return false;
        if (chunk.Id() != kNodeName) continue;
        if (!ReadText(load, node.name)) return false;
        node.isNamed = true;
    }
    return true;
}

XMLNode NodeElement(const OlderNode& node) {
    XMLNode element = Element(kNodeElement);
    element.attributes[kNodeNameAttribute] = node.name;
    if (!node.handle) return element;
    element.AddChild(XMLNode(kHandleElement, *node.handle)).attributes[kPlatformAttribute] =
        kPlatform;
    return element;
}

// Names that entries have from the ones before may take so many bytes an entry, on an average, or
// one long name and many empty entries would take all memory.
constexpr std::size_t kMostTakenOver = 256;

bool ReadNodes(ILoad& load, XMLNode& plugin) {
    const OpenedChunk nodes(load);
    if (!nodes.Is(kNodesChunk)) return false;
    XMLNode nodeInfo = Element(kNodeInfoElement);
    OlderNode node;
    std::size_t takenOver = 0;
    for (OpenedChunk entry(load); entry.IsOpen(); entry.Next()) {
        if (!entry.Is(kNodeEntry) || !ReadNode(load, node)) return false;
        if (!node.isNamed) takenOver += node.name.size();
        if (takenOver > kMostTakenOver * (nodeInfo.children.size() + 1)) return false;
        nodeInfo.AddChild(NodeElement(node));
    }
    plugin.AddChild(nodeInfo);
    return true;
}

bool ReadBody(ILoad& load, XMLNode& plugin, std::string& profile) {
    const OpenedChunk body(load);
    return body.Is(kBodyChunk) && ReadData(load, plugin, profile) && ReadNodes(load, plugin);
}

}  // namespace

XMLNode ReadOlderState(ILoad& load) {
    XMLNode plugin = Element(kPluginElement);
    plugin.attributes["version"] = kVersion;
    std::string profile;
    if (!ReadTypeAndName(load, plugin) || !ReadBody(load, plugin, profile)) return XMLNode();
    plugin.AddChild(Element("inputprofile")).AddChild(XMLNode(profile));
    return plugin;
}
