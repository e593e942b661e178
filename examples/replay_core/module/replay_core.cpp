#include "replay_core/module/replay_core.h"

#include <utility>

#include "replay_core/state/guarded.h"
#include "replay_core/state/load_state.h"
#include "replay_core/state/stored_state.h"
#include "tvl/log.h"

namespace replay {

ReplayCore::ReplayCore(TVL::AdaptorInterface& adaptor)
    : adaptor_(adaptor),
      services_(adaptor),
      options_(adaptor.GetOptionsPanel()),
      takes_(adaptor),
      currentSeconds_(adaptor.GetCurrentTime()),
      convertButton_("Convert all controllers") {}

ReplayCore::~ReplayCore() {
    LogFault(Guarded([this] { takes_.Drop(); }));
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
        report.takes = TellTakes();
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
    else if (!request.mergedScenes.empty())
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
