#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>
#include <memory>
#include <utility>

#include "platform/progress_line.h"
#include "replay_core/module/capture_plan.h"
#include "replay_core/module/replay_core.h"
#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/into_take.h"
#include "replay_core/recorder/look.h"
#include "replay_core/recorder/read_back.h"
#include "replay_core/recorder/scenery.h"
#include "replay_core/state/node_book.h"
#include "tvl/log.h"

// What this Core is asked for around the host, a request each.

namespace replay {
namespace {

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// How far from where it is meant to be a joint may be read back.
constexpr double kToleratedErrorMetres = 0.001;

std::string Millimetres(double metres) {
    constexpr double kTenths = 1e4;
    return NumberText(std::round(metres * kTenths) / 10) + " mm";
}

// What a person has to know of a capture that was recorded.
void Judge(const PlannedTake& planned, const RecordedTake& recorded, const ReadBack& readBack,
           Report& report) {
    const std::string capture = planned.recording.capture + ": ";
    if (!planned.motion.oddity.empty()) report.warnings.push_back(capture + planned.motion.oddity);
    if (recorded.framesWithoutKey > 0)
        report.faults.push_back(capture + std::to_string(recorded.framesWithoutKey) + " of " +
                                std::to_string(recorded.recording.FrameCount()) +
                                " frames have no time of their own in the host, and are lost");
    if (readBack.maxPositionErrorMetres > kToleratedErrorMetres)
        report.faults.push_back(capture + "a joint is " +
                                Millimetres(readBack.maxPositionErrorMetres) +
                                " from where it is meant to be, with " +
                                Millimetres(kToleratedErrorMetres) + " tolerated");
}

void Tell(const PlannedTake& planned, const RecordedTake& recorded, CaptureReport& capture) {
    capture.recording = recorded.recording;
    capture.owner = planned.take->Name();
    capture.joints = planned.motion.joints.size();
    capture.nodes = planned.take->Book().Nodes().size();
    capture.liftedFrames = recorded.lifts.LiftedFrames();
    capture.maxLiftMetres = recorded.lifts.Most();
}

void Tell(const ReadBack& readBack, CaptureReport& capture) {
    capture.figure = readBack.figure;
    capture.maxPositionErrorMetres = readBack.maxPositionErrorMetres;
    capture.maxFieldOfViewErrorDegrees = readBack.maxFieldOfViewErrorDegrees;
    capture.maxTargetDistanceErrorMetres = readBack.maxTargetDistanceErrorMetres;
}

// Null if no file is wanted.
std::unique_ptr<TextFile> OpenCsv(const Request& request, std::string& error) {
    if (request.csv.empty()) return nullptr;
    auto file = std::make_unique<TextFile>(request.csv);
    if (!file->IsOpen()) error = file->CannotBeWritten();
    return file;
}

std::vector<TVL::CoreNode*> AllNodesOf(const Takes& takes) {
    std::vector<TVL::CoreNode*> nodes;
    for (const std::unique_ptr<Take>& take : takes.All())
        std::ranges::copy(take->Book().Nodes(), std::back_inserter(nodes));
    return nodes;
}

// Those of the host's names, in their order. `error` names the first that no node has.
std::vector<TVL::CoreNode*> Named(std::span<TVL::CoreNode* const> nodes,
                                  std::span<const std::string> names, std::string& error) {
    std::vector<TVL::CoreNode*> named;
    for (const std::string& name : names) {
        const std::size_t before = named.size();
        std::ranges::copy_if(nodes, std::back_inserter(named),
                             [&](TVL::CoreNode* node) { return node->GetName() == name; });
        if (named.size() > before) continue;
        error = "no node of the Core's is called \"" + name + "\"";
        return {};
    }
    return named;
}

class OptionTurnedOn {
  public:
    OptionTurnedOn(PanelOptions& options, int id) : options_(options), id_(id) {
        const PanelOption* const option = options.Find(id);
        before_ = option && option->value;
        options.Set(id, true);
    }
    ~OptionTurnedOn() { options_.Set(id_, before_); }
    OptionTurnedOn(const OptionTurnedOn&) = delete;
    OptionTurnedOn& operator=(const OptionTurnedOn&) = delete;

  private:
    PanelOptions& options_;
    int id_;
    bool before_;
};

}  // namespace

// While a scene comes in, its state is handed to SetCoreState, which takes its nodes up: what
// MergeModels gives has told its number when it goes back. Every merge brings state, if only to say
// that there is none.
void ReplayCore::Merge(const Request& request, Report& report) {
    for (const std::string& path : request.mergedScenes) {
        MergeReport& merge = report.merges.emplace_back(MergeReport{.path = path});
        const std::size_t before = statesHeard_;
        for (TVL::CNode* node : adaptor_.MergeModels(path)) {
            if (!node) continue;
            ++merge.nodes;
            AsCoreNode(node)->Destroy();
        }
        if (merge.nodes == 0)
            report.error = path + ": the host brought in nothing";
        else if (statesHeard_ == before || !untaken_.empty())
            report.error = path + ": its takes could not be taken up";
        if (!report.error.empty()) return;
    }
}

void ReplayCore::Sample(const Request& request, Report& report) {
    std::vector<TVL::CoreNode*> nodes = AllNodesOf(takes_);
    if (!request.sampledNodes.empty()) nodes = Named(nodes, request.sampledNodes, report.error);
    if (!report.error.empty()) return;
    const std::unique_ptr<TextFile> csv = OpenCsv(request, report.error);
    if (!report.error.empty()) return;
    platform::ProgressLine progress(request.showsProgress, "Sampling",
                                    platform::ProgressIn::kPercent, request.sampleTimes->count);
    report.error = SamplePoses(nodes, *request.sampleTimes, *csv, progress);
    progress.Wipe();
    if (report.error.empty()) report.error = csv->Finish();
}

void ReplayCore::Inspect(const Request& request, Report& report) {
    // A mesh is of the time that is asked for then, and the adaptor keeps none.
    const OptionTurnedOn dynamic(options_, TVL::kDynamicMeshes);
    report.looks = LookAtNodes(adaptor_, request.inspectedNodes, request.inspectionSeconds);
}

// Whatever can be found out before the scene is touched is found out first: damaged captures, a
// range beyond their end, a file of positions that cannot be opened, a take that is another one.
void ReplayCore::Record(const Request& request, Report& report) {
    std::vector<PlannedTake> plan = ReadCaptures(request, report);
    if (!report.error.empty()) return;
    const Scenery scenery(adaptor_, request.ground, request.guide);
    report.error = scenery.Error();
    if (!report.error.empty()) return;
    const std::unique_ptr<TextFile> csv = OpenCsv(request, report.error);
    if (!report.error.empty()) return;
    FindTakes(request, takes_, plan, report);
    if (!report.error.empty()) return;
    plan.front().guide = scenery.Guide();
    RecordPlan(plan,
               {.ground = scenery.Ground(),
                .followsWithCamera = request.followsWithCamera,
                .range = request.range,
                .showsProgress = request.showsProgress},
               csv.get(), report);
}

void ReplayCore::RecordPlan(std::span<const PlannedTake> plan, const RecordSettings& settings,
                            TextFile* csv, Report& report) {
    TVL::Log log("Recording", TVL::Log::kNotice);
    const double before = currentSeconds_;
    const auto start = std::chrono::steady_clock::now();
    const RecordedTakes recorded = RecordTakes(adaptor_, plan, settings, recording_);
    report.recordSeconds = SecondsSince(start);
    report.error = recorded.error;
    const std::vector<CaptureReport*> reports = ReportsOf(plan, report);
    for (std::size_t i = 0; i < recorded.takes.size(); ++i)
        Tell(plan[i], recorded.takes[i], *reports[i]);
    for (std::size_t i = recorded.takes.size(); i < plan.size(); ++i)
        reports[i]->error = plan[i].recording.capture + ": not recorded, since " + report.error;
    if (!report.error.empty()) {
        GoTo(adaptor_, before);
        return;
    }
    adaptor_.ForceRedraw();
    for (std::size_t i = 0; i < plan.size() && report.error.empty(); ++i) {
        platform::ProgressLine progress(
            settings.showsProgress, "Reading back " + plan[i].take->Name(),
            platform::ProgressIn::kPercent, recorded.takes[i].recording.FrameCount());
        const ReadBack readBack = ReadTake(plan[i].motion, recorded.takes[i], csv, progress);
        progress.Wipe();
        Tell(readBack, *reports[i]);
        reports[i]->kept =
            TailBehind(plan[i].take->Recordings(), recorded.takes[i].recording.LastSeconds());
        report.error = readBack.error;
        Judge(plan[i], recorded.takes[i], readBack, report);
    }
    if (report.error.empty() && csv) report.error = csv->Finish();
}

std::vector<TakeReport> ReplayCore::TellTakes() const {
    std::vector<TakeReport> told;
    for (const std::unique_ptr<Take>& take : takes_.All()) {
        if (!take->IsThere()) continue;
        TakeReport& entry = told.emplace_back();
        entry.name = take->Name();
        if (const Take* const parent = StoredParent(*take)) entry.parent = parent->Name();
        entry.recordings = take->Recordings();
        for (TVL::CoreNode* const node : take->Book().Nodes())
            entry.nodes.push_back({.name = node->GetNodeName(), .hostName = node->GetName()});
        for (const StoredNode& missing : take->Missing())
            entry.missing.push_back(missing.name);
    }
    return told;
}

}  // namespace replay
