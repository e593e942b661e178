#include "command/record.h"

#include <algorithm>
#include <fstream>

#include "command/core_environment.h"
#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/plain_number.h"
#include "command/scenery.h"
#include "command/scratch_file.h"
#include "headless/scene_view.h"
#include "platform/environment.h"

namespace headless {
namespace {

CoreRequest RequestFor(const RecordOptions& options) {
    CoreRequest request{{kCaptureVariable, Lines(options.captures)},
                        {kCaptureScaleVariable, Plain(options.metresPerUnit)},
                        {kOptimisedVariable, options.optimisedController ? "1" : "0"},
                        {kFollowCameraVariable, options.followsWithCamera ? "1" : "0"},
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
        .lens = {}};
    if (options.holdsToGround)
        capture.lift = {report.Count(entry + "liftedFrames"),
                        report.Number(entry + "maxLiftMetres")};
    if (options.followsWithCamera)
        capture.lens = {report.Number(entry + "maxFieldOfViewErrorDegrees"),
                        report.Number(entry + "maxTargetDistanceErrorMetres")};
    return capture;
}

void TakeReport(const CoreReport& report, const RecordOptions& options, RecordResult& result) {
    for (std::size_t i = 1; i <= report.Entries("captures"); ++i)
        result.captures.push_back(
            TakeCapture(report, "capture." + std::to_string(i) + '.', options));
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
    CoreStage stage(Company::kPluginAndCore, SettingsFor(options));
    if (!options.into.empty()) stage.Open(options.into);
    const CoreRequest request = RequestFor(options);
    const std::uint64_t before = SceneDigest();
    RecordResult result;
    TakeReport(AskForFile(stage, request, options.csv, csv), options, result);
    if (!options.scene.empty()) stage.Save(options.scene);
    result.complaints = stage.Complaints();
    if (!options.poses.empty())
        AskForFile(stage, {{kSampleVariable, FrameTimes(result)}}, options.poses, poses);
    CountNodesAndKeys(result);
    UndoAndRedo(stage.Host(), before, result);
    result.hostObjectsAlive = stage.ShutDown();
    if (!options.csv.empty()) csv.Keep();
    if (!options.poses.empty()) poses.Keep();
    return result;
}

}  // namespace headless
