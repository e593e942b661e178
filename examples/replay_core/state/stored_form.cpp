#include "replay_core/state/stored_form.h"

namespace replay {

void SetStoredText(XMLNode& element, std::string_view key, std::string_view text) {
    if (text.find('>') == std::string_view::npos)
        element.attributes[std::string(key)] = text;
    else
        element.AddChild(XMLNode(key, text));
}

std::string StoredText(const XMLNode& element, std::string_view key) {
    const auto attribute = element.attributes.find(std::string(key));
    return attribute == element.attributes.end() ? element.Child(key).Text() : attribute->second;
}

}  // namespace replay
