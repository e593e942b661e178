#include "replay_core/recorder/csv.h"

namespace replay {

std::string CsvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? "\"\"" : std::string(1, c);
    return field + '"';
}

}  // namespace replay
