#include "replay_core/module/report.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/whole_file.h"

namespace replay {
namespace {

std::string Listed(std::span<const double> numbers) {
    std::string text;
    for (const double number : numbers)
        (text += text.empty() ? "" : " ") += NumberText(number);
    return text;
}

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
    void Truth(std::string_view key, bool truth) { Line(key, std::size_t{truth}); }
    void Line(std::string_view key, double number) { Line(key, NumberText(number)); }

    void Numbers(std::string_view key, std::span<const double> numbers) {
        Line(key, Listed(numbers));
    }
    void Matrix(std::string_view key, const TVL::CMatrix4& matrix) {
        std::string text;
        for (const auto& row : matrix.rows)
            (text += text.empty() ? "" : " ") += Listed(row);
        Line(key, std::move(text));
    }

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
    out.Line(".liftedFrames", capture.liftedFrames);
    out.Line(".maxLiftMetres", capture.maxLiftMetres);
    out.Line(".maxPositionErrorMetres", capture.maxPositionErrorMetres);
    out.Line(".maxFieldOfViewErrorDegrees", capture.maxFieldOfViewErrorDegrees);
    out.Line(".maxTargetDistanceErrorMetres", capture.maxTargetDistanceErrorMetres);
    if (!capture.kept) return;
    out.Line(".keptFromSeconds", capture.kept->fromSeconds);
    out.Line(".keptUntilSeconds", capture.kept->untilSeconds);
}

void Write(Writer& out, const Report::Merge& merge) {
    out.Line(".path", merge.path);
    out.Line(".nodes", merge.nodes);
}

void Write(Writer& out, const NodeLook::Transform& transform) {
    out.Matrix(".world", transform.world);
    out.Matrix(".local", transform.local);
}

void Write(Writer& out, const NodeLook::Mesh& mesh) {
    out.Line(".vertices", mesh.vertices);
    out.Line(".faces", mesh.faces);
    out.Line(".textureVertices", mesh.textureVertices);
    if (!mesh.bounds) return;
    out.Numbers(".least", mesh.bounds->least);
    out.Numbers(".most", mesh.bounds->most);
}

void Write(Writer& out, const NodeLook::Lens& lens) {
    out.Line(".fieldOfViewDegrees", lens.fieldOfViewDegrees);
    out.Line(".fieldOfViewType", static_cast<std::size_t>(lens.fieldOfViewType));
    out.Line(".targetDistance", lens.targetDistance);
}

void Write(Writer& out, const NodeLook::Shape& shape) {
    out.List<double>(".curves", ".curve", shape.curveLengths,
                     [&out](double length) { out.Line("", length); });
}

template <class Kind>
void WriteKind(Writer& out, std::string_view key, const std::optional<Kind>& lent) {
    out.Truth(key, lent.has_value());
    if (lent) Write(out, *lent);
}

void Write(Writer& out, const NodeLook& look) {
    out.Line(".handle", std::size_t{look.handle});
    out.Truth(".isThere", look.isThere);
    if (!look.isThere) return;
    out.Line(".name", look.name);
    out.Line(".parent", look.parent);
    out.Line(".children", look.children);
    out.Truth(".isVisible", look.isVisible);
    WriteKind(out, ".transform", look.transform);
    out.Truth(".helper", look.lendsHelper);
    WriteKind(out, ".mesh", look.mesh);
    WriteKind(out, ".lens", look.lens);
    WriteKind(out, ".shape", look.shape);
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
    out.Texts("warnings", "warning", report.warnings);
    out.Texts("faults", "fault", report.faults);
    out.List<Report::Capture>("captures", "capture", report.captures, write);
    out.Line("recordSeconds", report.recordSeconds);
    out.List<Report::Merge>("merges", "merge", report.merges, write);
    out.List<NodeLook>("looks", "look", report.looks, write);
    out.List<Report::Take>("takes", "take", report.takes, write);
    return file.Finish();
}

}  // namespace replay
