#include "tests/end_to_end/stage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/process.h"
#include "tests/support/folder/surroundings.h"

namespace {

constexpr char kUtility[] = "Tarvo Lumiset Util";
constexpr int kStartButton = 1046;

std::map<std::string, std::string> ReadReport(const std::string& path) {
    std::map<std::string, std::string> report;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        report[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return report;
}

}  // namespace

Stage::Stage() {
    PlaceRegistry(folder_, {CORE_FOLDER, folder_.Path().string()});
    Tell("LUMISET_REPORT", File("report.txt"));
    Tell("LUMISET_CAPTURE_SCALE", "1");
    EXPECT_EQ(session_.LoadPlugin(PLUGIN_MODULE), "");
    session_.Start();
    EXPECT_EQ(session_.KeptUtilities(), 1u) << "the Core was not attached";
    EXPECT_TRUE(session_.OpenUtility(kUtility));
}

Stage::~Stage() {
    EXPECT_TRUE(session_.AcceleratorsEnabled());
    EXPECT_TRUE(session_.AnimateButtonEnabled());
    const std::size_t keptUtilities = session_.KeptUtilities();
    session_.ShutDown();
    // The plug-in's global utility lives as long as the process.
    EXPECT_EQ(headless::TakeCensus().heapBlocks, aliveBefore_ + keptUtilities);
    for (const auto& [variable, value] : told_)
        platform::SetVariable(variable.c_str(), "");
}

void Stage::Tell(const std::string& variable, const std::string& value) {
    told_[variable] = value;
    platform::SetVariable(variable.c_str(), value);
}

std::map<std::string, std::string> Stage::Press() {
    std::filesystem::remove(File("report.txt"));
    EXPECT_TRUE(session_.PressButton(kStartButton));
    return ReadReport(File("report.txt"));
}

std::map<std::string, std::string> Stage::Record(const std::string& capture) {
    Tell("LUMISET_CAPTURE", capture);
    std::map<std::string, std::string> report = Press();
    EXPECT_EQ(report["status"], "ok") << report["error"];
    return report;
}

void Stage::Reopen() {
    EXPECT_EQ(session_.SaveScene(File("reopened")).error, "");
    EXPECT_EQ(session_.OpenScene(File("reopened")).error, "");
}

headless::NodeView View(std::string_view hostName) {
    for (const headless::NodeView& node : headless::Nodes())
        if (node.name == hostName) return node;
    ADD_FAILURE() << "no node is called " << hostName;
    return {};
}

Place PlaceOf(std::string_view hostName, int frame) {
    headless::PositionView host;
    EXPECT_TRUE(headless::NodePosition(View(hostName).handle, frame * kTicksPerFrame, host));
    return {host.x / kUnitsPerMetre, host.z / kUnitsPerMetre, -host.y / kUnitsPerMetre};
}

void ExpectPlace(std::string_view hostName, int frame, const Place& expected, double tolerance) {
    const Place place = PlaceOf(hostName, frame);
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(place[axis], expected[axis], tolerance)
            << hostName << ", frame " << frame << ", axis " << axis;
}

INode* Put(Object* object, const char* name, const Matrix3& world) {
    INode* const node = GetCOREInterface()->CreateObjectNode(object);
    node->SetName(name);
    node->SetNodeTM(0, world);
    return node;
}

std::string Walk(std::size_t frames) {
    std::string text =
        "HIERARCHY\nROOT Hip\n{\nOFFSET 0 0 0\n"
        "CHANNELS 6 Xposition Yposition Zposition Zrotation Yrotation Xrotation\n"
        "JOINT Knee\n{\nOFFSET 0 -0.5 0\nCHANNELS 3 Zrotation Yrotation Xrotation\n"
        "End Site\n{\nOFFSET 0 -0.5 0\n}\n}\n}\n"
        "MOTION\nFrames: " +
        std::to_string(frames) + "\nFrame Time: 0.05\n";
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const std::string number = std::to_string(frame);
        text += std::to_string(static_cast<double>(frame) / 10) + " 1 0 0 0 " + number + " 0 0 0\n";
    }
    return text;
}
