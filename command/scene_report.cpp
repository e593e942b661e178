#include "command/scene_report.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "command/exit_status.h"
#include "command/output.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

void PrintList(std::ostream& out, std::string_view title, const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        out << (&text == &texts.front() ? title : ", ") << text;
}

}  // namespace

SceneReport SaveAndReport(CoreStage& stage, const std::string& scene, const std::string& target) {
    if (!target.empty()) stage.Save(target);
    SceneReport report;
    report.scene = scene;
    report.saved = target;
    report.nodes = Nodes().size();
    report.complaints = stage.Complaints();
    try {
        if (stage.WantsCore()) report.takes = stage.AskCore({}).takes;
    } catch (const Failure& failure) {
        report.complaints.push_back(failure.what());
    }
    report.boxes = stage.BoxTexts();
    return report;
}

void PrintForPerson(std::ostream& out, const SceneReport& report) {
    out << report.scene << ": " << Counted(report.nodes, "node") << '\n';
    for (const replay::TakeReport& take : report.takes) {
        out << "Take " << take.name << ": " << Counted(take.nodes, "node");
        if (!take.parent.empty()) out << ", below " << take.parent;
        PrintList(out, ", from ", take.captures);
        PrintList(out, "; not found: ", take.missing);
        out << '\n';
    }
    for (const std::string& box : report.boxes)
        out << "Message box: " << box << '\n';
    for (const std::string& complaint : report.complaints)
        out << "Complaint: " << complaint << '\n';
    if (!report.saved.empty()) out << "Saved as " << report.saved << '\n';
}

void PrintForProgram(std::ostream& out, const SceneReport& report) {
    nlohmann::ordered_json object = {{"scene", report.scene},
                                     {"nodes", report.nodes},
                                     {"takes", nlohmann::ordered_json::array()},
                                     {"boxes", report.boxes},
                                     {"complaints", report.complaints},
                                     {"saved", report.saved}};
    for (const replay::TakeReport& take : report.takes)
        object["takes"].push_back({{"name", take.name},
                                   {"parent", take.parent},
                                   {"captures", take.captures},
                                   {"nodes", take.nodes},
                                   {"missing", take.missing}});
    PrintJson(out, object);
}

}  // namespace headless
