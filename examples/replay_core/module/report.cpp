#include "replay_core/module/report.h"

#include <algorithm>
#include <string_view>

#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/whole_file.h"

namespace replay {
namespace {

std::string OneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return text;
}

}  // namespace

std::string WriteReport(const std::string& path, const Report& report) {
    WholeFile file(path);
    const auto line = [&](std::string_view key, std::string_view value) {
        file.Write(key);
        file.Write("=");
        file.Write(value);
        file.Write("\n");
    };
    line("status", report.error.empty() ? "ok" : "error");
    line("error", OneLine(report.error));
    line("capture", OneLine(report.capture));
    line("owner", OneLine(report.owner));
    line("joints", std::to_string(report.joints));
    line("frames", std::to_string(report.frames));
    line("frameSeconds", NumberText(report.frameSeconds));
    line("nodes", std::to_string(report.nodes));
    line("maxPositionErrorMetres", NumberText(report.maxPositionErrorMetres));
    line("recordSeconds", NumberText(report.recordSeconds));
    return file.Finish();
}

}  // namespace replay
