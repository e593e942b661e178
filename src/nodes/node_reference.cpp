#include "nodes/node_reference.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "host/interface.h"

namespace {

constexpr const char* kReferenceElement = "max";
constexpr std::string_view kSpace = " \t\n\v\f\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) + 1 - first);
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

XMLNode NodeReference(INode& hostNode) {
    return XMLNode(kReferenceElement, hostNode.GetHandle());
}

std::unique_ptr<CMAXNode> NodeFor(const XMLNode& reference) {
    const std::optional<std::uint32_t> handle = HandleIn(reference.Child(0).name);
    INode* const hostNode = handle ? GetCOREInterface()->GetINodeByHandle(*handle) : nullptr;
    return hostNode ? std::make_unique<CMAXNode>(nullptr, hostNode) : nullptr;
}
