#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <span>
#include <string_view>

#include "command/core_stage.h"
#include "command/exit_status.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

// The fields of a report out of the lines of its file, by their keys.
class FieldReader {
  public:
    using Lines = std::map<std::string, std::string>;

    explicit FieldReader(const Lines& lines) : lines_(lines) {}

    void operator()(std::string_view key, std::string& text) const { text = Text(key); }
    void operator()(std::string_view key, std::size_t& count) const {
        const std::string text = Text(key);
        std::from_chars(text.data(), text.data() + text.size(), count);
    }
    void operator()(std::string_view key, bool& truth) const {
        std::size_t number = 0;
        (*this)(key, number);
        truth = number == 1;
    }
    void operator()(std::string_view key, double& number) const {
        (*this)(key, std::span(&number, 1));
    }
    void operator()(std::string_view key, std::span<double> numbers) const {
        const std::string text = Text(key);
        const char* const end = text.data() + text.size();
        const char* at = text.data();
        for (double& number : numbers) {
            at = std::from_chars(at, end, number).ptr;
            if (at < end) ++at;
        }
    }

    // No more entries than there are lines.
    template <class Entry>
    void List(std::string_view plural, std::string_view singular, std::vector<Entry>& entries) {
        std::size_t count = 0;
        (*this)(plural, count);
        entries.resize(std::min(count, lines_.size()));
        replay::DescribeEntries(*this, prefix_, singular, entries);
    }

    template <class Lent>
    void Kind(std::string_view key, std::optional<Lent>& lent) {
        bool isLent = false;
        (*this)(key, isLent);
        // Not emplace() of nothing, which clang denies of a type that lies in what has it.
        if (isLent) Describe(*this, lent.emplace(Lent{}));
    }
    template <class Fields>
    void Rest(std::string_view key, std::optional<Fields>& rest) {
        if (!Text(key).empty()) Describe(*this, rest.emplace(Fields{}));
    }

  private:
    std::string Text(std::string_view key) const {
        const auto found = lines_.find(prefix_ + std::string(key));
        return found == lines_.end() ? std::string() : found->second;
    }

    const Lines& lines_;
    std::string prefix_;
};

}  // namespace

std::optional<replay::Report> ReadReport(const std::string& path) {
    FieldReader::Lines lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) lines[line.substr(0, equals)] = line.substr(equals + 1);
    }
    const bool isThere = std::filesystem::exists(platform::FromNarrow(path));
    if (file.bad() || (isThere && !file.is_open()))
        throw Failure(path + ": the Core's report cannot be read");
    if (lines.empty()) return std::nullopt;
    replay::Report report;
    FieldReader fields(lines);
    Describe(fields, report);
    return report;
}

}  // namespace headless
