#include "replay_core/module/report.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/whole_file.h"

namespace replay {
namespace {

class Writer {
  public:
    explicit Writer(WholeFile& file) : file_(file) {}

    void Line(std::string_view key, std::string value) {
        std::ranges::replace_if(
            value, [](char c) { return c == '\n' || c == '\r'; }, ' ');
        file_.Write(prefix_);
        file_.Write(key);
        file_.Write("=");
        file_.Write(value += '\n');
    }
    void Line(std::string_view key, std::size_t count) { Line(key, std::to_string(count)); }
    void Line(std::string_view key, double number) { Line(key, NumberText(number)); }

    // `plural` counts them; each is written behind `singular` and its number.
    template <class Entry, class Write>
    void List(std::string_view plural, std::string_view singular, std::span<const Entry> entries,
              const Write& write) {
        Line(plural, entries.size());
        const std::string outer = prefix_;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            prefix_ = outer + std::string(singular) + '.' + std::to_string(i + 1);
            write(entries[i]);
        }
        prefix_ = outer;
    }

    void Texts(std::string_view plural, std::string_view singular,
               const std::vector<std::string>& texts) {
        List<std::string>(plural, singular, texts,
                          [this](const std::string& text) { Line("", text); });
    }

  private:
    WholeFile& file_;
    std::string prefix_;
};

void Write(Writer& out, const Report::Capture& capture) {
    out.Line(".path", capture.path);
    out.Line(".owner", capture.owner);
    out.Line(".joints", capture.joints);
    out.Line(".frames", capture.frames);
    out.Line(".frameSeconds", capture.frameSeconds);
    out.Line(".nodes", capture.nodes);
    out.Line(".maxPositionErrorMetres", capture.maxPositionErrorMetres);
}

void Write(Writer& out, const Report::Merge& merge) {
    out.Line(".path", merge.path);
    out.Line(".nodes", merge.nodes);
}

void Write(Writer& out, const Report::Take& take) {
    out.Line(".name", take.name);
    out.Line(".parent", take.parent);
    out.Texts(".captures", ".capture", take.captures);
    out.Line(".nodes", take.nodes);
    out.Texts(".missing", ".missing", take.missing);
}

}  // namespace

std::string WriteReport(const std::string& path, const Report& report) {
    WholeFile file(path);
    Writer out(file);
    const auto write = [&out](const auto& entry) { Write(out, entry); };
    out.Line("status", std::string(report.error.empty() ? "ok" : "error"));
    out.Line("error", report.error);
    out.List<Report::Capture>("captures", "capture", report.captures, write);
    out.Line("recordSeconds", report.recordSeconds);
    out.List<Report::Merge>("merges", "merge", report.merges, write);
    out.List<Report::Take>("takes", "take", report.takes, write);
    return file.Finish();
}

}  // namespace replay
