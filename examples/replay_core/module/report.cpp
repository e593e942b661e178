#include "replay/report.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "replay_core/module/environment.h"
#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/text_file.h"

namespace replay {
namespace {

// The fields of a report, each as a line of the file.
class FieldWriter {
  public:
    explicit FieldWriter(TextFile& file) : file_(file) {}

    void operator()(std::string_view key, std::string value) {
        std::ranges::replace_if(
            value, [](char c) { return c == '\n' || c == '\r'; }, ' ');
        file_.Write(prefix_);
        file_.Write(key);
        file_.Write("=");
        file_.Write(value += '\n');
    }
    void operator()(std::string_view key, std::size_t count) {
        (*this)(key, std::to_string(count));
    }
    void operator()(std::string_view key, bool truth) { (*this)(key, std::size_t{truth}); }
    void operator()(std::string_view key, double number) { (*this)(key, NumberText(number)); }
    void operator()(std::string_view key, std::span<const double> numbers) {
        std::string text;
        for (const double number : numbers)
            (text += text.empty() ? "" : " ") += NumberText(number);
        (*this)(key, std::move(text));
    }

    template <class Entry>
    void List(std::string_view plural, std::string_view singular, std::vector<Entry>& entries) {
        (*this)(plural, entries.size());
        DescribeEntries(*this, prefix_, singular, entries);
    }

    template <class Lent>
    void Kind(std::string_view key, std::optional<Lent>& lent) {
        (*this)(key, lent.has_value());
        Rest(key, lent);
    }
    template <class Fields>
    void Rest(std::string_view, std::optional<Fields>& rest) {
        if (rest) Describe(*this, *rest);
    }

  private:
    TextFile& file_;
    std::string prefix_;
};

}  // namespace

std::string WriteReport(const std::string& path, Report& report) {
    TextFile file(path);
    FieldWriter fields(file);
    Describe(fields, report);
    return file.Finish();
}

}  // namespace replay
