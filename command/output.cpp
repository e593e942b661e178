#include "command/output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

#include "platform/narrow_path.h"

namespace headless {
namespace {

// Names and paths are texts of the code page, and JSON is UTF-8.
void TurnToUtf8(nlohmann::ordered_json& value) {
    if (value.is_string()) {
        value = Utf8(value.get<std::string>());
    } else if (value.is_structured()) {
        for (nlohmann::ordered_json& part : value)
            TurnToUtf8(part);
    }
}

}  // namespace

std::string Utf8(const std::string& text) {
    const std::u8string turned = platform::FromNarrow(text).u8string();
    return {turned.begin(), turned.end()};
}

void PrintJson(std::ostream& out, nlohmann::ordered_json object) {
    TurnToUtf8(object);
    out << object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void PrintJsonLine(std::ostream& out, nlohmann::ordered_json object) {
    TurnToUtf8(object);
    constexpr int kOneLine = -1;
    out << object.dump(kOneLine, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

std::string Counted(std::size_t count, const std::string& noun, const std::string& several) {
    const std::string number = std::to_string(count) + ' ';
    if (count == 1) return number + noun;
    return number + (several.empty() ? noun + 's' : several);
}

std::string InTable(std::string text) {
    for (char& c : text) {
        if (c == '\n' || c == '\r' || c == '\t')
            c = ' ';
        else if (static_cast<unsigned char>(c) < ' ' || c == '\x7F')
            c = '?';
    }
    return text;
}

std::string Quoted(const std::string& text) {
    return '"' + InTable(text) + '"';
}

void PrintEach(std::ostream& out, const std::string& what, const std::vector<std::string>& texts) {
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        if (std::find(texts.begin(), text, *text) != text) continue;
        const auto count = std::count(text, texts.end(), *text);
        out << what << InTable(*text);
        if (count > 1) out << " (" << count << " times)";
        out << '\n';
    }
}

std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string Plain(double number) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string Rounded(double number, int decimals) {
    const double unit = std::pow(10.0, decimals);
    const double rounded = std::round(number * unit) / unit;
    std::array<char, 400> text;  // for any number
    char* const end = text.data() + text.size();
    return {
        text.data(),
        std::to_chars(text.data(), end, rounded == 0 ? 0 : rounded, std::chars_format::fixed).ptr};
}

void PrintTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const std::vector<std::string>& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const std::vector<std::string>& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
    }
}

}  // namespace headless
