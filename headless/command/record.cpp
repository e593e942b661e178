#include "command/record.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "command/core_environment.h"
#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/scratch_file.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

// Read back by the Core to the last bit.
std::string Plain(double number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << number;
    return text.str();
}

CoreRequest RequestFor(const RecordOptions& options) {
    return {{kCaptureVariable, Lines(options.captures)},
            {kCaptureScaleVariable, Plain(options.metresPerUnit)},
            {kOptimisedVariable, options.optimisedController ? "1" : "0"},
            {kProgressVariable, options.progress ? "1" : ""}};
}

// The plug-in appends to its trace, so that the file is made or emptied here.
void StartTrace(const std::string& path) {
    if (!path.empty() && !std::ofstream(path, std::ios::trunc))
        throw Failure(path + ": the trace cannot be written");
    SetVariable(kTraceVariable, path);
}

SessionSettings SettingsFor(const RecordOptions& options) {
    if (options.hostUnitsPerMetre == RecordOptions().hostUnitsPerMetre) return {};
    return WithUnitsPerMetre(options.hostUnitsPerMetre);
}

void TakeReport(const CoreReport& report, RecordResult& result) {
    for (std::size_t i = 1; i <= report.Entries("captures"); ++i) {
        const std::string entry = "capture." + std::to_string(i) + '.';
        result.captures.push_back(
            {.capture = report.Text(entry + "path"),
             .joints = report.Count(entry + "joints"),
             .frames = report.Count(entry + "frames"),
             .frameSeconds = report.Number(entry + "frameSeconds"),
             .maxPositionErrorMetres = report.Number(entry + "maxPositionErrorMetres")});
    }
    if (result.captures.empty()) throw Failure("the Core reported no capture");
    result.recordSeconds = report.Number("recordSeconds");
}

// The times of the frames of the longest capture.
std::string FrameTimes(const RecordResult& result) {
    const auto length = [](const RecordedCapture& capture) {
        return static_cast<double>(capture.frames - 1) * capture.frameSeconds;
    };
    const RecordedCapture& longest = *std::ranges::max_element(result.captures, {}, length);
    return "0:" + Plain(length(longest)) + ':' + Plain(longest.frameSeconds);
}

// Where a file is wanted the Core writes it under the scratch file's name.
CoreReport AskForFile(CoreStage& stage, CoreRequest request, const std::string& target,
                      ScratchFile& file) {
    if (!target.empty()) request[kCsvVariable] = file.Path();
    try {
        return stage.AskCore(request);
    } catch (const Failure& failure) {
        throw Failure(file.Named(failure.what()), failure.Status());
    }
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

}  // namespace

RecordResult Record(const RecordOptions& options) {
    StartTrace(options.trace);
    ScratchFile csv(options.csv);
    ScratchFile poses(options.poses);
    CoreStage stage(Company::kPluginAndCore, SettingsFor(options));
    const std::uint64_t before = SceneDigest();
    const std::set<std::uint32_t> handles = Handles();
    RecordResult result;
    TakeReport(AskForFile(stage, RequestFor(options), options.csv, csv), result);
    if (!options.scene.empty()) stage.Save(options.scene);
    result.complaints = stage.Complaints();
    if (!options.poses.empty())
        AskForFile(stage, {{kSampleVariable, FrameTimes(result)}}, options.poses, poses);
    CountNodesAndKeys(handles, result);
    UndoAndRedo(stage.Host(), before, result);
    result.hostObjectsAlive = stage.ShutDown();
    if (!options.csv.empty()) csv.Keep();
    if (!options.poses.empty()) poses.Keep();
    return result;
}

}  // namespace headless
