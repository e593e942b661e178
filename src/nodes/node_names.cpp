#include "nodes/node_names.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "host/interface.h"
#include "xml/xml_text.h"

namespace {

constexpr std::string::size_type kLongestHostName = 1023;  // bytes

bool ContinuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Where the character at `end` begins. Bytes that are no UTF-8 are characters of their own.
std::string::size_type CharacterStart(const std::string& text, std::string::size_type end) {
    constexpr std::string::size_type kLongestCharacter = 4;
    for (std::string::size_type back = 0; back < kLongestCharacter; ++back)
        if (!ContinuesCharacter(text[end - back])) return end - back;
    return end;
}

constexpr const char* kReferenceElement = "max";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kXMLSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kXMLSpace) + 1 - first);
}

std::optional<std::uint32_t> HandleIn(std::string_view text) {
    const std::string_view digits = Trimmed(text);
    const char* const end = digits.data() + digits.size();
    std::uint32_t handle = 0;
    const std::from_chars_result read = std::from_chars(digits.data(), end, handle);
    if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return handle;
}

}  // namespace

std::string NameInScene(INode* hostNode) {
    const char* const name = hostNode ? hostNode->GetName() : nullptr;
    return name ? name : "";
}

std::string CutHostName(std::string name) {
    if (name.size() > kLongestHostName) name.resize(CharacterStart(name, kLongestHostName));
    return name;
}

XMLNode NodeReference(INode& hostNode) {
    return XMLNode(kReferenceElement, hostNode.GetHandle());
}

std::unique_ptr<CMAXNode> NodeFor(const XMLNode& reference) {
    const std::optional<std::uint32_t> handle = HandleIn(reference.Child(0).name);
    INode* const hostNode = handle ? GetCOREInterface()->GetINodeByHandle(*handle) : nullptr;
    return hostNode ? std::make_unique<CMAXNode>(nullptr, hostNode) : nullptr;
}
