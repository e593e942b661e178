#include "command/record.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/output.h"
#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/time.h"
#include "host/units.h"
#include "platform/files.h"
#include "platform/interrupt.h"
#include "platform/process.h"
#include "recorder/stream/notes.h"
#include "replay/request.h"
#include "tvl/installation.h"

namespace headless {
namespace {

namespace variable = replay::variable;

constexpr char kGround[] = "Ground";
constexpr double kGroundSideMetres = 20;
constexpr int kGroundDivisions = 10;

// The handle of the node "Ground". If there is none, one is drawn: a flat square around the origin,
// which is no undo step.
std::uint32_t FindOrDrawGround(CoreStage& stage) {
    if (INode* const ground = FindNode(kGround)) return ground->GetHandle();
    const double side = kGroundSideMetres / GetMasterScale(UNITS_METERS);
    INode* const ground =
        GetCOREInterface()->CreateObjectNode(NewGround(static_cast<float>(side), kGroundDivisions));
    ground->SetName(kGround);
    stage.Note(recorder::note::kOwnWork, "a ground was drawn");
    return ground->GetHandle();
}

// In a new scene there is nothing beside the takes.
std::string RangeFor(const RecordOptions& options) {
    if (options.keepsRange) return variable::kRangeStays;
    return options.into.empty() ? variable::kRangeFits : "";
}

CoreRequest RequestFor(CoreStage& stage, const RecordOptions& options) {
    CoreRequest request{
        {variable::kCaptures, Lines(options.captures)},
        {variable::kScale, Plain(options.metresPerUnit)},
        {variable::kHeight, options.heightMetres > 0 ? Plain(options.heightMetres) : ""},
        {variable::kFrom, options.from},
        {variable::kTo, options.to},
        {variable::kStart, options.start},
        {variable::kRange, RangeFor(options)},
        {variable::kOptimised, options.optimisedController ? "1" : "0"},
        {variable::kFollowCamera, options.followsWithCamera ? "1" : "0"},
        {variable::kTake, Lines({options.take})},
        {variable::kReplace, options.replaces ? "1" : ""},
        {variable::kPartial, options.takesCutCaptures ? "1" : ""}};
    if (options.holdsToGround) request[variable::kGround] = std::to_string(FindOrDrawGround(stage));
    const std::vector<NodeView> nodes = Nodes();
    const auto shape = std::ranges::find(nodes, SHAPE_CLASS_ID, &NodeView::objectSuperClass);
    if (shape != nodes.end()) request[variable::kGuide] = std::to_string(shape->handle);
    return request;
}

// The plug-in appends to its trace, so that the file is made or emptied here.
// Without a path the trace goes where the environment says already.
void StartTrace(const std::string& path) {
    if (path.empty()) return;
    if (!std::ofstream(path, std::ios::trunc))
        throw Failure(path + ": the trace cannot be written");
    platform::SetVariable(TVL::kTraceVariable, path);
}

SessionSettings SettingsFor(const RecordOptions& options) {
    SessionSettings settings;
    if (options.hostUnitsPerMetre != RecordOptions().hostUnitsPerMetre)
        settings = WithUnitsPerMetre(options.hostUnitsPerMetre);
    if (!options.frameRate) return settings;
    settings.ticksPerFrame = settings.ticksPerFrame * settings.frameRate / *options.frameRate;
    settings.frameRate = *options.frameRate;
    return settings;
}

// Keys stand at whole ticks.
CaptureResult ResultOf(replay::CaptureReport report) {
    constexpr double kOnTick = 1e-4;  // of a tick, beside it
    CaptureResult result{.report = std::move(report)};
    const replay::Recording& recording = result.report.recording;
    const double ticksPerSecond = double{1} * GetTicksPerFrame() * GetFrameRate();
    for (std::size_t frame = recording.firstFrame; frame < recording.endFrame; ++frame) {
        const double ticks = ticksPerSecond * replay::HostSeconds(recording.Seconds(frame));
        const double beside = std::abs(ticks - std::trunc(ticks));
        if (beside < kOnTick) continue;
        ++result.framesBetweenTicks;
        result.mostBetweenSeconds = std::max(result.mostBetweenSeconds, beside / ticksPerSecond);
    }
    return result;
}

void LookAtTime(RecordResult& result) {
    const double ticksPerSecond = double{1} * GetTicksPerFrame() * GetFrameRate();
    const Interval range = GetCOREInterface()->GetAnimRange();
    result.sceneRate = GetFrameRate();
    result.sceneRange = {range.Start() / ticksPerSecond, range.End() / ticksPerSecond};
}

void ReportTake(replay::Report report, const RecordOptions& options, RecordResult& result) {
    if (report.captures.empty()) throw Failure("the Core reported no capture");
    for (replay::CaptureReport& capture : report.captures)
        result.captures.push_back(ResultOf(std::move(capture)));
    result.saidHeight = options.heightMetres;
    LookAtTime(result);
    result.holdsToGround = options.holdsToGround;
    result.followsWithCamera = options.followsWithCamera;
    result.recordSeconds = report.recordSeconds;
    result.complaints = std::move(report.warnings);
    result.isFaulty = !report.faults.empty();
    std::ranges::move(report.faults, std::back_inserter(result.complaints));
}

bool SavesOverScene(const RecordOptions& options) {
    return !options.into.empty() && platform::AreSameFile(options.scene, options.into);
}

// A scene with takes in it is not replaced by one in which they are damaged.
void Save(CoreStage& stage, const RecordOptions& options, RecordResult& result) {
    if (options.scene.empty()) return;
    if (result.isFaulty && SavesOverScene(options)) {
        result.complaints.push_back(options.scene + ": kept as it was before");
        return;
    }
    stage.SaveWhole(options.scene);
    result.saved = options.scene;
}

// What was recorded when Ctrl-C ended it is saved, but not in the place of the scene that it was
// recorded into: that one still has whole takes.
void SaveStopped(CoreStage& stage, const RecordOptions& options, std::uint64_t before) {
    platform::Interrupt::Meet();
    if (options.scene.empty() || SavesOverScene(options) || SceneDigest() == before) return;
    stage.SaveWhole(options.scene);
}

replay::Report AskToRecord(CoreStage& stage, const RecordOptions& options,
                           const CoreRequest& request, const CoreFile& csv, std::uint64_t before) {
    try {
        return options.csv.empty() ? stage.AskCore(request) : stage.AskCoreForFile(request, csv);
    } catch (const Failure& failure) {
        if (failure.Status() == kStopped) SaveStopped(stage, options, before);
        throw;
    }
}

// The times of the frames of the longest capture.
std::string FrameTimes(const RecordResult& result) {
    const auto length = [](const CaptureResult& capture) {
        const replay::Recording& recording = capture.report.recording;
        return capture.IsRecorded() ? recording.LastSeconds() - recording.FirstSeconds() : -1;
    };
    const replay::Recording& longest =
        std::ranges::max_element(result.captures, {}, length)->report.recording;
    return Plain(longest.FirstSeconds()) + ':' + Plain(longest.LastSeconds()) + ':' +
           Plain(longest.frameSeconds);
}

// The frames of a faulty take can be at times of which no table is made.
void WritePoses(CoreStage& stage, const RecordOptions& options, CoreFile& poses,
                RecordResult& result) {
    if (options.poses.empty()) return;
    if (result.isFaulty)
        result.complaints.push_back(options.poses + ": not written");
    else
        stage.AskCoreForFile({{variable::kSample, FrameTimes(result)}}, poses);
}

// At the end, since undo, redo and the shutdown can add to what the opening had to be told of.
void TakeComplaints(CoreStage& stage, RecordResult& result) {
    const StageNews news = stage.TakeNewsInOne();
    std::ranges::copy(news.complaints, std::back_inserter(result.complaints));
    for (const std::string& text : news.boxes)
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
    LongWork trying("Trying undo and redo", 4);
    const std::uint64_t recorded = SceneDigest();
    trying.Advance();
    while (session.Undo())
        ++result.undoSteps;
    trying.Advance();
    result.undoIdentical = SceneDigest() == before;
    trying.Advance();
    while (session.Redo()) {
    }
    trying.Advance();
    result.redoIdentical = SceneDigest() == recorded;
}

}  // namespace

RecordResult Record(const RecordOptions& options) {
    StartTrace(options.trace);
    CoreFile csv(options.csv);
    CoreFile poses(options.poses);
    CoreStage stage(options.guests, SettingsFor(options));
    stage.NeedReplayCore();
    if (!options.into.empty()) stage.Open(options.into);
    if (options.guests.tape.empty() && !(options.into + options.scene).empty())
        stage.TellOfTapeBeside(options.into.empty() ? options.scene : options.into);
    const CoreRequest request = RequestFor(stage, options);
    const std::uint64_t before = SceneDigest();
    RecordResult result;
    ReportTake(AskToRecord(stage, options, request, csv, before), options, result);
    Save(stage, options, result);
    WritePoses(stage, options, poses, result);
    CountNodesAndKeys(result);
    UndoAndRedo(stage.Host(), before, result);
    result.hostObjectsAlive = stage.ShutDown();
    TakeComplaints(stage, result);
    if (!options.csv.empty()) csv.Keep();
    if (!options.poses.empty() && !result.isFaulty) poses.Keep();
    result.hasTables = !options.csv.empty() || (!options.poses.empty() && !result.isFaulty);
    return result;
}

}  // namespace headless
