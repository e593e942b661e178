#include "replay_core/module/replay_core.h"

#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/interrupt.h"
#include "replay_core/recorder/brackets.h"
#include "replay_core/state/load_state.h"
#include "replay_core/state/stored_state.h"
#include "tvl/ids.h"
#include "tvl/log.h"

namespace replay {
namespace {

// Empty, or why the report is not written. Without a path nobody waits for it.
std::string HandOver(Report& report, const std::string& path) {
    return path.empty() ? "" : WriteReport(path, report);
}

}  // namespace

ReplayCore::ReplayCore(TVL::AdaptorInterface& adaptor)
    : adaptor_(adaptor),
      services_(adaptor),
      options_(adaptor.GetOptionsPanel()),
      takes_(adaptor),
      currentSeconds_(adaptor.GetCurrentTime()),
      convertButton_("Convert all controllers") {
    untaken_.reserve(kMostUntaken);
    // Whoever waits for reports learns by an empty one that this is the Core that writes them, and
    // would take it for another one without.
    Report greeting;
    const std::string unwritten = HandOver(greeting, ReadEnvironment().report);
    if (!unwritten.empty()) throw std::runtime_error(unwritten);
}

ReplayCore::~ReplayCore() {
    takes_.Drop();
    Guarded([this] { adaptor_.FlushUndoBuffer(); });
}

// Scene state ------------------------------------------------------------------------------------

// What is taken up only now has no tags in the file that is being written.
XMLNode ReplayCore::GetCoreState() {
    if (!untaken_.empty()) {
        TakeUpState();
        throw std::runtime_error("stored takes were taken up only now; save once more");
    }
    return WholeState(takes_);
}

void ReplayCore::SetCoreState(XMLNode state) {
    ++statesHeard_;
    XMLNode& kept = untaken_.emplace_back();
    kept.kind = state.kind;
    kept.name.swap(state.name);
    kept.attributes.swap(state.attributes);
    kept.children.swap(state.children);
    TakeUpState();
}

void ReplayCore::TakeUpState() {
    for (const XMLNode& state : untaken_)
        WriteToTrace(LoadState(adaptor_, takes_, state));
    untaken_.clear();
}

void ReplayCore::ResetCore() {
    StopCore();
    takes_.Drop();
    untaken_.clear();
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
    return option == TVL::kConvertAllControllers ? &convertButton_ : nullptr;
}

void ReplayCore::BindOption(int option, int) {
    if (options_.Find(option)) return;
    TVL::Log(TVL::Log::kWarning).WriteValue("The option panel does not have option", option);
}

void ReplayCore::GetOptionValue(int option, bool* value) {
    const PanelOption* const found = options_.Find(option);
    if (found && !found->isButton && value) *value = found->value;
}

// The window -------------------------------------------------------------------------------------

void ReplayCore::ShowCore(TVL::WindowHandle) {
    if (recording_.isRunning) return;
    const Request request = ReadEnvironment();
    Report report;
    if (const char* const fault = Guarded([&] { Show(request, report); })) report.error = fault;
    report.takes = TellTakes();
    for (const std::string& warning : report.warnings)
        TVL::Log(TVL::Log::kWarning).Write(warning);
    for (const std::string& fault : report.faults)
        TVL::Log(TVL::Log::kError).Write(fault);
    if (!report.error.empty()) TVL::Log(TVL::Log::kError).Write(report.error);
    const std::string unwritten = HandOver(report, request.report);
    if (!unwritten.empty()) TVL::Log(TVL::Log::kError).Write(unwritten);
}

// A host's process is its own: Ctrl-C is listened to where that was asked for.
void ReplayCore::Show(const Request& request, Report& report) {
    std::optional<platform::Interrupt> interrupt;
    if (request.isInterruptible) interrupt.emplace();
    report.error = request.error;
    if (!report.error.empty()) return;
    TakeUpState();
    if (request.optimisedControllers) {
        options_.Set(TVL::kOptimisedControllers, *request.optimisedControllers);
    }
    ShowPanel();
    if (!request.mergedScenes.empty())
        Merge(request, report);
    else if (request.sampleTimes)
        Sample(request, report);
    else if (!request.inspectedNodes.empty())
        Inspect(request, report);
    else if (!request.captures.empty())
        Record(request, report);
}

// The trace is all the window that this Core has.
void ReplayCore::ShowPanel() const {
    TVL::Log log("Options", TVL::Log::kNotice);
    for (const PanelOption& option : options_.All()) {
        if (!option.isButton) log.WriteValue(option.name, option.value ? "on" : "off");
    }
}

}  // namespace replay
