#include "command/record.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <utility>

#include "command/core_environment.h"
#include "command/core_report.h"
#include "command/scratch_file.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "platform/load_failure.h"
#include "platform/win32.h"

namespace headless {
namespace {

constexpr char kPluginFile[] = "TarvoOstrelUtil.so";
constexpr char kUtilityName[] = "Tarvo Lumiset Util";
constexpr int kStartButton = 1046;

std::string BesideProgram(const char* file) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    return (std::filesystem::path(program).parent_path() / file).string();
}

// Read back by the Core to the last bit.
std::string Plain(double number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << number;
    return text.str();
}

void TellCore(const RecordOptions& options, const std::string& csv, const std::string& report) {
    SetVariable(kCaptureVariable, options.capture);
    SetVariable(kCaptureScaleVariable, Plain(options.metresPerUnit));
    SetVariable(kCsvVariable, csv);
    SetVariable(kReportVariable, report);
    SetVariable(kOptimisedVariable, options.optimisedController ? "1" : "0");
    SetVariable(kProgressVariable, options.progress ? "1" : "");
    SetVariable(kTraceVariable, options.trace);
}

// The plug-in appends to its trace, so that the file is made or emptied here. The result is empty,
// or says what is wrong.
std::string StartTrace(const std::string& path) {
    if (path.empty()) return {};
    std::ofstream file(path, std::ios::trunc);
    return file ? std::string() : path + ": the trace cannot be written";
}

SessionSettings SettingsFor(const RecordOptions& options) {
    if (options.hostUnitsPerMetre == RecordOptions().hostUnitsPerMetre) return {};
    return WithUnitsPerMetre(options.hostUnitsPerMetre);
}

// Presses the button that has the Core do its work; the report tells what came of it.
std::string LetCoreRecord(Session& session, const std::string& reportPath, CoreReport& report) {
    std::string boxText;
    session.OnMessageBox([&](const MessageBoxText& box) { boxText = box.text; });
    if (session.KeptUtilities() == 0)
        return "the Core could not be attached (" + platform::LastLoadFailure() + ")";
    if (!session.OpenUtility(kUtilityName) || !session.PressButton(kStartButton))
        return std::string(kPluginFile) + ": its panel \"" + kUtilityName + "\" has no button " +
               std::to_string(kStartButton);
    if (!boxText.empty())
        return "the Core could not be attached (it is of another version, or refused to start)";
    report = CoreReport::Read(reportPath);
    if (report.IsEmpty()) return "the Core reported nothing of its work";
    if (report.Text("status") != "ok") return report.Text("error");
    return {};
}

void TakeReport(const CoreReport& report, RecordResult& result) {
    const auto count = [&](const char* key) {
        return static_cast<std::size_t>(report.Number(key));
    };
    result.joints = count("joints");
    result.frames = count("frames");
    result.frameSeconds = report.Number("frameSeconds");
    result.maxPositionErrorMetres = report.Number("maxPositionErrorMetres");
    result.recordSeconds = report.Number("recordSeconds");
}

// What the recording made: its nodes, and the keys of all but the cameras among them, which are the
// joints.
void CountNodesAndKeys(const std::set<std::uint32_t>& before, RecordResult& result) {
    std::size_t bytes = 0;
    for (const NodeView& node : Nodes()) {
        if (before.contains(node.handle)) continue;
        ++result.nodes;
        if (node.objectSuperClass == CAMERA_CLASS_ID) continue;
        result.keys += static_cast<std::size_t>(node.keys.count);
        bytes += node.keys.storedBytes;
    }
    if (result.keys > 0)
        result.bytesPerKey = static_cast<double>(bytes) / static_cast<double>(result.keys);
}

void UndoAndRedo(Session& session, std::uint64_t before, RecordResult& result) {
    const std::uint64_t recorded = SceneDigest();
    while (session.Undo())
        ++result.undoSteps;
    result.undoIdentical = SceneDigest() == before;
    while (session.Redo()) {
    }
    result.redoIdentical = SceneDigest() == recorded;
}

std::set<std::uint32_t> Handles() {
    std::set<std::uint32_t> handles;
    for (const NodeView& node : Nodes())
        handles.insert(node.handle);
    return handles;
}

// The part of the work for which a session is needed.
void RecordIn(Session& session, const std::string& reportPath, RecordResult& result) {
    result.error = session.LoadPlugin(BesideProgram(kPluginFile));
    if (!result.error.empty()) return;
    session.Start();
    const std::uint64_t before = SceneDigest();
    const std::set<std::uint32_t> handles = Handles();
    CoreReport report;
    result.error = LetCoreRecord(session, reportPath, report);
    if (!result.error.empty()) return;
    TakeReport(report, result);
    CountNodesAndKeys(handles, result);
    UndoAndRedo(session, before, result);
}

// A person knows the file by the name that it was to get.
void NameTarget(const ScratchFile& file, const std::string& target, std::string& text) {
    const std::size_t place = text.find(file.Path());
    if (place != std::string::npos) text.replace(place, file.Path().size(), target);
}

}  // namespace

RecordResult Record(const RecordOptions& options) {
    RecordResult result;
    result.capture = options.capture;
    result.error = StartTrace(options.trace);
    if (!result.error.empty()) return result;
    ScratchFile csv(options.csv);
    const ScratchFile report{""};
    TellCore(options, options.csv.empty() ? "" : csv.Path(), report.Path());

    Session session(SettingsFor(options));
    RecordIn(session, report.Path(), result);
    const std::size_t utilities = session.KeptUtilities();
    session.ShutDown();
    // The plug-in's global utility lives as long as the process.
    result.hostObjectsAlive = TakeCensus().heapBlocks - utilities;
    if (result.error.empty() && !options.csv.empty()) result.error = csv.Keep();
    if (!options.csv.empty()) NameTarget(csv, options.csv, result.error);
    return result;
}

}  // namespace headless
