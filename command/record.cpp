#include "command/record.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "command/core_environment.h"
#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/plain_number.h"
#include "command/scenery.h"
#include "command/scratch_file.h"
#include "headless/scene_view.h"
#include "platform/files.h"
#include "platform/process.h"

namespace headless {
namespace {

CoreRequest RequestFor(const RecordOptions& options) {
    CoreRequest request{{kCaptureVariable, Lines(options.captures)},
                        {kCaptureScaleVariable, Plain(options.metresPerUnit)},
                        {kOptimisedVariable, options.optimisedController ? "1" : "0"},
                        {kFollowCameraVariable, options.followsWithCamera ? "1" : "0"},
                        {kTakeVariable, Lines({options.take})},
                        {kReplaceVariable, options.replaces ? "1" : ""},
                        {kPartialVariable, options.takesCutCaptures ? "1" : ""},
                        {kProgressVariable, options.progress ? "1" : ""}};
    if (options.holdsToGround) request[kGroundVariable] = std::to_string(FindOrDrawGround());
    if (const auto shape = FirstShape()) request[kGuideVariable] = std::to_string(*shape);
    return request;
}

// The plug-in appends to its trace, so that the file is made or emptied here.
// Without a path the trace goes where the environment says already.
void StartTrace(const std::string& path) {
    if (path.empty()) return;
    if (!std::ofstream(path, std::ios::trunc))
        throw Failure(path + ": the trace cannot be written");
    platform::SetVariable(kTraceVariable, path);
}

SessionSettings SettingsFor(const RecordOptions& options) {
    if (options.hostUnitsPerMetre == RecordOptions().hostUnitsPerMetre) return {};
    return WithUnitsPerMetre(options.hostUnitsPerMetre);
}

RecordedCapture TakeCapture(const CoreReport& report, const std::string& entry,
                            const RecordOptions& options) {
    RecordedCapture capture{
        .capture = report.Text(entry + "path"),
        .joints = report.Count(entry + "joints"),
        .frames = report.Count(entry + "frames"),
        .frameSeconds = report.Number(entry + "frameSeconds"),
        .maxPositionErrorMetres = report.Number(entry + "maxPositionErrorMetres"),
        .lift = {},
        .lens = {},
        .kept = {}};
    if (options.holdsToGround)
        capture.lift = {report.Count(entry + "liftedFrames"),
                        report.Number(entry + "maxLiftMetres")};
    if (options.followsWithCamera)
        capture.lens = {report.Number(entry + "maxFieldOfViewErrorDegrees"),
                        report.Number(entry + "maxTargetDistanceErrorMetres")};
    if (const std::string until = "keptUntilSeconds"; !report.Text(entry + until).empty())
        capture.kept = {report.Number(entry + "keptFromSeconds"), report.Number(entry + until)};
    return capture;
}

void ReportTake(const CoreReport& report, const RecordOptions& options, RecordResult& result) {
    for (std::size_t i = 1; i <= report.Entries("captures"); ++i)
        result.captures.push_back(
            TakeCapture(report, "capture." + std::to_string(i) + '.', options));
    if (result.captures.empty()) throw Failure("the Core reported no capture");
    result.recordSeconds = report.Number("recordSeconds");
    result.complaints = report.Texts("warnings", "warning");
    const std::vector<std::string> faults = report.Texts("faults", "fault");
    result.isFaulty = !faults.empty();
    std::ranges::copy(faults, std::back_inserter(result.complaints));
}

// A scene with takes in it is not replaced by one in which they are damaged.
void Save(CoreStage& stage, const RecordOptions& options, RecordResult& result) {
    if (options.scene.empty()) return;
    if (result.isFaulty && !options.into.empty() &&
        platform::AreSameFile(options.scene, options.into)) {
        result.complaints.push_back(options.scene + ": kept as it was before");
        return;
    }
    stage.Save(options.scene);
    result.saved = options.scene;
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

// The frames of a faulty take can be at times of which no table is made.
void WritePoses(CoreStage& stage, const RecordOptions& options, ScratchFile& poses,
                RecordResult& result) {
    if (options.poses.empty()) return;
    if (result.isFaulty)
        result.complaints.push_back(options.poses + ": not written");
    else
        AskForFile(stage, {{kSampleVariable, FrameTimes(result)}}, options.poses, poses);
}

// At the end, since undo, redo and the shutdown can add to what the opening had to be told of.
void TakeComplaints(CoreStage& stage, RecordResult& result) {
    std::ranges::copy(stage.Complaints(), std::back_inserter(result.complaints));
    for (const std::string& text : stage.BoxTexts())
        result.complaints.push_back("message box: " + text);
}

void CountNodesAndKeys(RecordResult& result) {
    std::size_t bytes = 0;
    for (const NodeView& node : Nodes()) {
        ++result.nodes;
        if (node.objectSuperClass == CAMERA_CLASS_ID) continue;
        result.keys += static_cast<std::size_t>(node.keys.count);
        if (node.keys.count > 0) bytes += node.keys.storedBytes;
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

}  // namespace

RecordResult Record(const RecordOptions& options) {
    StartTrace(options.trace);
    ScratchFile csv(options.csv);
    ScratchFile poses(options.poses);
    CoreStage stage(Guests::kPluginAndCore, SettingsFor(options));
    if (!options.into.empty()) stage.Open(options.into);
    const CoreRequest request = RequestFor(options);
    const std::uint64_t before = SceneDigest();
    RecordResult result;
    ReportTake(AskForFile(stage, request, options.csv, csv), options, result);
    Save(stage, options, result);
    WritePoses(stage, options, poses, result);
    CountNodesAndKeys(result);
    UndoAndRedo(stage.Host(), before, result);
    result.hostObjectsAlive = stage.ShutDown();
    TakeComplaints(stage, result);
    if (!options.csv.empty()) csv.Keep();
    if (!options.poses.empty() && !result.isFaulty) poses.Keep();
    return result;
}

}  // namespace headless
