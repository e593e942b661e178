#include "command/print_json.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "platform/narrow_path.h"

namespace headless {
namespace {

// Names and paths are texts of the code page, and JSON is UTF-8.
void TurnToUtf8(nlohmann::ordered_json& value) {
    if (value.is_string()) {
        const std::u8string text = platform::FromNarrow(value.get<std::string>()).u8string();
        value = std::string(text.begin(), text.end());
    } else if (value.is_structured()) {
        for (nlohmann::ordered_json& part : value)
            TurnToUtf8(part);
    }
}

}  // namespace

void PrintJson(std::ostream& out, nlohmann::ordered_json object) {
    TurnToUtf8(object);
    out << object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace headless
