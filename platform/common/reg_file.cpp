#include "platform/common/reg_file.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "platform/common/text.h"

namespace platform {
namespace {

constexpr DWORD kMultiText = 7;  // REG_MULTI_SZ

std::string_view TrimStart(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

std::string_view Trim(std::string_view text) {
    text = TrimStart(text);
    return text.substr(0, text.find_last_not_of(" \t\r") + 1);
}

bool IsBlankOrComment(std::string_view text) {
    const std::string_view rest = Trim(text);
    return rest.empty() || rest.front() == ';';
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

// A number in hexadecimal digits that takes the whole text.
template <class Number>
std::optional<Number> ParseHexadecimal(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// A text in quotes, with \\ and \" for the two characters; the view moves behind it.
std::optional<std::string> TakeQuoted(std::string_view& text) {
    if (!TakePrefix(text, "\"")) return std::nullopt;
    std::string quoted;
    while (!text.empty()) {
        const char letter = text.front();
        text.remove_prefix(1);
        if (letter == '"') return quoted;
        if (letter == '\\' && !text.empty() && (text.front() == '\\' || text.front() == '"')) {
            quoted += text.front();
            text.remove_prefix(1);
        } else {
            quoted += letter;
        }
    }
    return std::nullopt;
}

std::optional<std::string> ParseBytes(std::string_view text) {
    std::string bytes;
    text = Trim(text);
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        const auto byte = ParseHexadecimal<std::uint8_t>(Trim(text.substr(0, comma)));
        if (!byte) return std::nullopt;
        bytes += static_cast<char>(*byte);
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return bytes;
}

RegValue TextValue(DWORD type, std::string text) {
    if (!text.ends_with('\0')) text += '\0';
    return {type, std::move(text)};
}

std::optional<RegValue> ParseNumberValue(std::string_view digits) {
    const auto number = ParseHexadecimal<std::uint32_t>(Trim(digits.substr(0, digits.find(';'))));
    if (!number) return std::nullopt;
    RegValue value{REG_DWORD, {}};
    for (int shift = 0; shift < 32; shift += 8) {
        value.bytes += static_cast<char>(*number >> shift & 0xFF);
    }
    return value;
}

// Behind "hex": either ":" and the bytes, or "(type):" and the bytes.
std::optional<RegValue> ParseBytesValue(std::string_view text) {
    DWORD type = REG_BINARY;
    if (TakePrefix(text, "(")) {
        const std::size_t close = text.find(')');
        if (close == std::string_view::npos) return std::nullopt;
        const auto given = ParseHexadecimal<std::uint32_t>(text.substr(0, close));
        if (!given) return std::nullopt;
        type = *given;
        text.remove_prefix(close + 1);
    }
    if (!TakePrefix(text, ":")) return std::nullopt;
    std::optional<std::string> bytes = ParseBytes(text.substr(0, text.find(';')));
    if (!bytes) return std::nullopt;
    if (type != REG_SZ && type != REG_EXPAND_SZ && type != kMultiText)
        return RegValue{type, *bytes};
    return TextValue(type, Utf8FromUtf16LittleEndian(*bytes));
}

std::optional<RegValue> ParseValue(std::string_view text) {
    if (text.starts_with('"')) {
        std::optional<std::string> quoted = TakeQuoted(text);
        if (!quoted || !IsBlankOrComment(text)) return std::nullopt;
        return TextValue(REG_SZ, std::move(*quoted));
    }
    if (TakePrefix(text, "dword:")) return ParseNumberValue(text);
    if (TakePrefix(text, "hex")) return ParseBytesValue(text);
    return std::nullopt;
}

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    RegFile Run() {
        while (!text_.empty()) {
            const int line = nextLine_;
            if (!TakeStatement(JoinedLine())) file_.damagedLines.push_back(line);
        }
        return std::move(file_);
    }

  private:
    std::string_view Line() {
        const std::size_t end = std::min(text_.find('\n'), text_.size());
        const std::string_view line = Trim(text_.substr(0, end));
        text_.remove_prefix(std::min(end + 1, text_.size()));
        ++nextLine_;
        return line;
    }

    // Bytes that go on in the next line end in a backslash; a text in quotes can end so, too, and
    // does not go on.
    std::string JoinedLine() {
        std::string line(Line());
        const bool holdsBytes = HoldsBytes(line);
        while (holdsBytes && line.ends_with('\\') && !text_.empty()) {
            line.pop_back();
            line += Line();
        }
        return line;
    }

    static bool HoldsBytes(std::string_view line) {
        return TakeName(line) && line.starts_with("hex");
    }

    // The name of a value, empty for the default value; the view moves to what it is set to.
    static std::optional<std::string> TakeName(std::string_view& line) {
        std::optional<std::string> name = TakePrefix(line, "@") ? std::string{} : TakeQuoted(line);
        line = TrimStart(line);
        if (!TakePrefix(line, "=")) return std::nullopt;
        line = TrimStart(line);
        return name;
    }

    bool TakeStatement(std::string_view line) {
        if (IsBlankOrComment(line) || line == "Windows Registry Editor Version 5.00") return true;
        return line.front() == '[' ? TakeKey(line) : TakeValue(line);
    }

    bool TakeKey(std::string_view line) {
        key_.clear();
        const std::size_t close = line.rfind(']');
        if (close == std::string_view::npos || !IsBlankOrComment(line.substr(close + 1))) {
            return false;
        }
        std::string_view path = line.substr(1, close - 1);
        const bool removes = TakePrefix(path, "-");
        if (path.empty()) return false;
        if (removes) {
            RemoveKey(LowerCase(path));
        } else {
            key_ = LowerCase(path);
            file_.keys.try_emplace(key_);
        }
        return true;
    }

    // With the keys below it, which stand in a run.
    void RemoveKey(const std::string& path) {
        constexpr char behindBackslash = '\\' + 1;
        file_.keys.erase(path);
        file_.keys.erase(file_.keys.lower_bound(path + '\\'),
                         file_.keys.lower_bound(path + behindBackslash));
    }

    bool TakeValue(std::string_view line) {
        const std::optional<std::string> name = TakeName(line);
        // Values behind a key's line that cannot be read belong nowhere.
        if (!name || key_.empty()) return false;
        RegKey& key = file_.keys[key_];
        if (TakePrefix(line, "-") && IsBlankOrComment(line)) {
            key.erase(LowerCase(*name));
            return true;
        }
        std::optional<RegValue> value = ParseValue(line);
        if (!value) return false;
        key[LowerCase(*name)] = std::move(*value);
        return true;
    }

    std::string_view text_;
    int nextLine_ = 1;
    std::string key_;  // empty: values have no place to go to
    RegFile file_;
};

}  // namespace

bool RegFile::HasKey(const std::string& path) const {
    if (keys.contains(path)) return true;
    const auto below = keys.lower_bound(path + '\\');
    return below != keys.end() && below->first.starts_with(path + '\\');
}

const RegValue* RegFile::FindValue(const std::string& path, const std::string& name) const {
    const auto key = keys.find(path);
    if (key == keys.end()) return nullptr;
    const auto value = key->second.find(name);
    return value == key->second.end() ? nullptr : &value->second;
}

RegFile ParseRegFile(std::string_view bytes) {
    if (TakePrefix(bytes, "\xFF\xFE")) return Parser(Utf8FromUtf16LittleEndian(bytes)).Run();
    TakePrefix(bytes, "\xEF\xBB\xBF");
    return Parser(bytes).Run();
}

void ReportUnreadable(const std::string& path) {
    std::fprintf(stderr, "%s: the registry file cannot be read\n", path.c_str());
}

void ReportDamage(const std::string& path, const RegFile& file) {
    for (const int line : file.damagedLines)
        std::fprintf(stderr, "%s:%d: not a line of a registry file, skipped\n", path.c_str(), line);
}

}  // namespace platform
