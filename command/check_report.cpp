#include "command/check_report.h"

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/written_files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

std::string TitleOf(const CheckOutcome& outcome) {
    return outcome.name + (outcome.seed > 0 ? ' ' + std::to_string(outcome.seed) : "");
}

// How a failed check is looked into.
std::vector<std::string> HelpOn(const CheckOutcome& outcome) {
    std::vector<std::string> lines;
    if (outcome.verdict != Verdict::kFaulty) return lines;
    if (!outcome.tape.empty()) lines.push_back("tape: " + outcome.tape);
    if (!outcome.log.empty()) lines.push_back("steps: " + outcome.log);
    lines.push_back("alone: " + outcome.alone);
    return lines;
}

nlohmann::ordered_json JsonOf(const CheckOutcome& outcome) {
    return {{"name", outcome.name},  {"level", outcome.level},
            {"seed", outcome.seed},  {"outcome", Word(outcome.verdict)},
            {"why", outcome.why},    {"seconds", outcome.seconds},
            {"tape", outcome.tape},  {"log", outcome.log},
            {"alone", outcome.alone}};
}

// Of a text of the code page.
std::string InXml(const std::string& text) {
    const std::u8string utf8 = platform::FromNarrow(InTable(text)).u8string();
    std::string escaped;
    for (const char8_t letter : utf8) {
        const char c = static_cast<char>(letter);
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '"')
            escaped += "&quot;";
        else
            escaped += c;
    }
    return escaped;
}

void WriteCase(std::ostream& out, const CheckOutcome& outcome) {
    out << "    <testcase classname=\"level " << outcome.level << "\" name=\""
        << InXml(TitleOf(outcome)) << "\" time=\"" << outcome.seconds << "\">";
    if (outcome.verdict == Verdict::kNotApplicable)
        out << "<skipped message=\"" << InXml(outcome.why) << "\"/>";
    if (outcome.verdict == Verdict::kFaulty) {
        out << "<failure message=\"" << InXml(outcome.why) << "\">";
        for (const std::string& line : HelpOn(outcome))
            out << InXml(line) << '\n';
        out << "</failure>";
    }
    out << "</testcase>\n";
}

void WriteSuite(std::ostream& out, const CheckReport& report) {
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite name=\""
        << InXml(report.core) << "\" tests=\"" << report.outcomes.size() << "\" failures=\""
        << report.Count(Verdict::kFaulty) << "\" skipped=\""
        << report.Count(Verdict::kNotApplicable) << "\">\n";
    for (const CheckOutcome& outcome : report.outcomes)
        WriteCase(out, outcome);
    out << "  </testsuite>\n</testsuites>\n";
}

}  // namespace

std::size_t CheckReport::Count(Verdict verdict) const {
    return static_cast<std::size_t>(std::ranges::count(outcomes, verdict, &CheckOutcome::verdict));
}

void PrintOutcome(std::ostream& out, const CheckOutcome& outcome) {
    out << std::setw(2) << outcome.level << "  " << std::left << std::setw(18) << TitleOf(outcome)
        << std::right << ' ' << Word(outcome.verdict);
    if (!outcome.why.empty()) out << ": " << outcome.why;
    out << '\n';
    for (const std::string& line : HelpOn(outcome))
        out << "    " << line << '\n';
    out.flush();
}

void PrintForPerson(std::ostream& out, const CheckReport& report) {
    out << Counted(report.outcomes.size(), "check") << ": " << report.Count(Verdict::kPassed)
        << " passed, " << report.Count(Verdict::kFaulty) << " failed, "
        << report.Count(Verdict::kNotApplicable) << " not applicable\n";
}

void PrintForProgram(std::ostream& out, const CheckReport& report) {
    auto checks = nlohmann::ordered_json::array();
    for (const CheckOutcome& outcome : report.outcomes)
        checks.push_back(JsonOf(outcome));
    PrintJson(out, {{"core", report.core},
                    {"passed", report.Count(Verdict::kPassed)},
                    {"failed", report.Count(Verdict::kFaulty)},
                    {"notApplicable", report.Count(Verdict::kNotApplicable)},
                    {"checks", checks}});
}

void WriteJunit(const CheckReport& report, CoreFile& file) {
    std::ofstream out(platform::FromNarrow(file.Path()), std::ios::binary);
    WriteSuite(out, report);
    out.close();
    if (!out) throw Failure(file.Named(file.Path()) + ": " + kOutputLost);
    file.Keep();
}

}  // namespace headless
