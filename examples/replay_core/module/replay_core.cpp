#include "replay_core/module/replay_core.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>
#include <variant>

#include "replay_core/motion/read_motion.h"
#include "replay_core/recorder/read_back.h"
#include "replay_core/state/guarded.h"
#include "replay_core/state/load_state.h"
#include "replay_core/state/stored_state.h"
#include "tvl/log.h"

namespace replay {
namespace {

// What the button of option 1028 sends to those who listen to its node.
constexpr std::int32_t kConvertAllMessage = 324;

std::string CaptureName(const std::string& path) {
    return std::filesystem::path(path).stem().string();
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The log is the only place where a fault outside of a request can be told.
void LogFault(const char* fault) {
    if (!fault) return;
    Guarded([fault] { TVL::Log(TVL::Log::kError).Write(fault); });
}

}  // namespace

ReplayCore::ReplayCore(TVL::AdaptorInterface& adaptor)
    : adaptor_(adaptor),
      services_(adaptor),
      options_(adaptor.GetOptionsPanel()),
      takes_(adaptor),
      currentSeconds_(adaptor.GetCurrentTime()),
      convertButton_("Convert all controllers") {}

ReplayCore::~ReplayCore() {
    takes_.Drop();
    adaptor_.FlushUndoBuffer();
}

// Scene state ------------------------------------------------------------------------------------

XMLNode ReplayCore::GetCoreState() {
    XMLNode state;
    LogFault(Guarded([&] { state = WholeState(takes_); }));
    return state;
}

void ReplayCore::SetCoreState(XMLNode state) {
    LogFault(Guarded([&] { WriteToTrace(LoadState(adaptor_, takes_, state)); }));
}

void ReplayCore::ResetCore() {
    StopCore();
    LogFault(Guarded([this] { takes_.Drop(); }));
}

// The host's time, and what runs in it -----------------------------------------------------------

void ReplayCore::NotifyTimeChanged(double seconds) {
    currentSeconds_ = seconds;
}

bool ReplayCore::IsCoreRunning() {
    return recording_.isRunning;
}

void ReplayCore::StopCore() {
    recording_.stopRequested = recording_.isRunning;
}

// Options ----------------------------------------------------------------------------------------

TVL::Util::MessageNode* ReplayCore::GetOptionNode(int option, int) {
    return option == kConvertAllControllers ? &convertButton_ : nullptr;
}

void ReplayCore::BindOption(int option, int) {
    if (options_.Find(option)) return;
    LogFault(Guarded([option] {
        TVL::Log(TVL::Log::kWarning).WriteValue("The option panel does not have option", option);
    }));
}

void ReplayCore::GetOptionValue(int option, bool* value) {
    const PanelOption* const found = options_.Find(option);
    if (found && !found->isButton && value) *value = found->value;
}

// The window -------------------------------------------------------------------------------------

void ReplayCore::ShowCore(TVL::WindowHandle) {
    if (recording_.isRunning) return;
    LogFault(Guarded([this] {
        const Request request = ReadEnvironment();
        Report report;
        if (const char* const fault = Guarded([&] { Show(request, report); })) report.error = fault;
        if (!report.error.empty()) TVL::Log(TVL::Log::kError).Write(report.error);
        if (request.report.empty()) return;
        const std::string unwritten = WriteReport(request.report, report);
        if (!unwritten.empty()) TVL::Log(TVL::Log::kError).Write(unwritten);
    }));
}

void ReplayCore::Show(const Request& request, Report& report) {
    report.error = request.error;
    if (!report.error.empty()) return;
    if (request.optimisedControllers) {
        options_.Set(kOptimisedControllers, *request.optimisedControllers);
    }
    ShowPanel();
    if (request.pressedButton)
        PressButton(*request.pressedButton, report);
    else
        Record(request, report);
}

// The trace is all the window that this Core has.
void ReplayCore::ShowPanel() const {
    TVL::Log log("Options", TVL::Log::kNotice);
    for (const PanelOption& option : options_.All()) {
        if (!option.isButton) log.WriteValue(option.name, option.value ? "on" : "off");
    }
}

void ReplayCore::PressButton(int id, Report& report) {
    const PanelOption* const option = options_.Find(id);
    if (!option || id != kConvertAllControllers) {
        report.error = "option " + std::to_string(id) + " is no button that can be pressed";
        return;
    }
    TVL::Util::Message message(kConvertAllMessage, option->name);
    convertButton_.Broadcast(&message);
}

// Whatever can be found out before the scene is touched is found out first: a damaged capture, a
// range beyond its end, a file of positions that cannot be opened.
void ReplayCore::Record(const Request& request, Report& report) {
    report.capture = request.capture;
    std::variant<Motion, ReadError> read = ReadMotion(request.capture);
    if (const ReadError* const error = std::get_if<ReadError>(&read)) {
        report.error = Describe(*error);
        return;
    }
    const Motion& motion = std::get<Motion>(read);
    const FrameRange frames = request.frames.value_or(FrameRange{0, motion.frameCount});
    if (frames.end > motion.frameCount) {
        report.error = request.capture + ": the capture has only " +
                       std::to_string(motion.frameCount) + " frames";
        return;
    }
    const std::unique_ptr<WholeFile> csv =
        request.csv.empty() ? nullptr : std::make_unique<WholeFile>(request.csv);
    if (csv && !csv->IsOpen()) {
        report.error = csv->CannotBeWritten();
        return;
    }
    RecordMotion(motion, frames, request, csv.get(), report);
}

void ReplayCore::RecordMotion(const Motion& motion, FrameRange frames, const Request& request,
                              WholeFile* csv, Report& report) {
    Take& take = takes_.Named(CaptureName(request.capture));
    TVL::Log log("Recording " + take.Name(), TVL::Log::kNotice);
    const double before = currentSeconds_;
    const auto start = std::chrono::steady_clock::now();
    const RecordedTake recorded = RecordTake(
        adaptor_, motion, take, {request.metresPerUnit, frames, request.showsProgress}, recording_);
    report.recordSeconds = SecondsSince(start);
    report.owner = take.Name();
    report.joints = motion.joints.size();
    report.frames = recorded.frames.Count();
    report.frameSeconds = motion.frameSeconds;
    report.nodes = take.Book().Nodes().size();
    report.error = recorded.error;
    if (!report.error.empty()) {
        adaptor_.SetCurrentTime(before);
        return;
    }
    adaptor_.ForceRedraw();
    const ReadBack readBack = ReadPositions(motion, request.metresPerUnit, recorded, csv);
    report.maxPositionErrorMetres = readBack.maxPositionErrorMetres;
    report.error = readBack.error;
    if (report.error.empty() && csv) report.error = csv->Finish();
}

}  // namespace replay
