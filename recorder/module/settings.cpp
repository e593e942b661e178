#include "recorder/module/settings.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/narrow_path.h"
#include "recorder/tape/tape_limit.h"

namespace recorder {
namespace {

namespace fs = std::filesystem;

std::string Trimmed(std::string text) {
    constexpr std::string_view kAround = " \t\r";
    text.erase(0, text.find_first_not_of(kAround));
    text.erase(text.find_last_not_of(kAround) + 1);
    return text;
}

std::string Variable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value ? value : "";
}

// With the variables in place of their names; one % alone stands for itself. Of those that are not
// set one is named: without it a path would begin elsewhere.
std::string Filled(std::string_view text, std::string& unset) {
    std::string filled;
    while (!text.empty()) {
        const std::size_t open = text.find('%');
        const std::size_t close = open == text.npos ? open : text.find('%', open + 1);
        filled += text.substr(0, close == text.npos ? close : open);
        if (close == text.npos) break;
        const std::string name(text.substr(open + 1, close - open - 1));
        const std::string value = Variable(name);
        if (value.empty()) unset = name;
        filled += value;
        text.remove_prefix(close + 1);
    }
    return filled;
}

// An editor writes UTF-8, and variables are in the code page; a text that can be UTF-8 is.
fs::path PathOf(const std::string& text, const fs::path& folder) try {
    return folder / fs::path(std::u8string(text.begin(), text.end()));
} catch (const std::exception&) {
    return folder / platform::FromNarrow(text);
}

// Reads one setting. What is wrong with its value is given.
class SettingsReader {
  public:
    explicit SettingsReader(const fs::path& folder) : folder_(folder) {}

    ModuleSettings Read() {
        ReadFile();
        for (const Row& row : kRows)
            if (const std::string value = Variable(row.variable); !value.empty())
                Note(row.variable, (this->*row.read)(value));
        return std::move(settings_);
    }

  private:
    struct Row {
        std::string_view name;
        const char* variable;
        std::string (SettingsReader::*read)(const std::string& value);
    };
    static const std::array<Row, 4> kRows;

    void ReadFile() {
        std::ifstream file(folder_ / kSettingsFile, std::ios::binary);
        std::string line;
        for (int number = 1; std::getline(file, line); ++number) {
            constexpr std::string_view kMark = "\xEF\xBB\xBF";
            if (number == 1 && line.starts_with(kMark)) line.erase(0, kMark.size());
            Note(kSettingsFile + (':' + std::to_string(number)), ReadLine(line));
        }
    }

    std::string ReadLine(const std::string& line) {
        const std::string text = Trimmed(line.substr(0, line.find('#')));
        if (text.empty()) return {};
        const std::size_t sign = text.find('=');
        const std::string name = Trimmed(text.substr(0, sign));
        for (const Row& row : kRows) {
            if (row.name != name || sign == text.npos) continue;
            std::string unset;
            const std::string value = Filled(Trimmed(text.substr(sign + 1)), unset);
            return unset.empty() ? (this->*row.read)(value) : "there is no variable " + unset;
        }
        return '"' + text +
               "\" is no setting: core, tape, limit and watch are, each with = and a value";
    }

    std::string ReadCore(const std::string& value) {
        settings_.core = PathOf(value, folder_);
        return {};
    }
    std::string ReadTape(const std::string& value) {
        settings_.tape.path = platform::ToNarrow(PathOf(value, folder_));
        return settings_.tape.path.empty() ? "the code page lacks a letter of " + value : "";
    }
    std::string ReadLimit(const std::string& value) {
        const std::optional<std::uint64_t> bytes = ReadBytes(value);
        if (!bytes || *bytes < kLeastTapeLimit) return '"' + value + "\" is no size from 8M on";
        settings_.tape.limit = *bytes;
        return {};
    }
    std::string ReadWatch(const std::string& value) {
        settings_.watches = value == "yes";
        return value == "yes" || value == "no" ? "" : '"' + value + "\" is neither yes nor no";
    }

    void Note(const std::string& place, const std::string& mistake) {
        if (!mistake.empty()) settings_.mistakes.push_back(place + ": " + mistake);
    }

    const fs::path& folder_;
    ModuleSettings settings_;
};

constexpr std::array<SettingsReader::Row, 4> SettingsReader::kRows = {{
    {"core", kCoreVariable, &SettingsReader::ReadCore},
    {"tape", kTapeVariable, &SettingsReader::ReadTape},
    {"limit", kLimitVariable, &SettingsReader::ReadLimit},
    {"watch", kWatchVariable, &SettingsReader::ReadWatch},
}};

}  // namespace

ModuleSettings ReadSettings(const fs::path& folder) {
    return SettingsReader(folder).Read();
}

}  // namespace recorder
