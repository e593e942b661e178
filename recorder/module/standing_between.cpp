#include "recorder/module/standing_between.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include "platform/narrow_path.h"
#include "tvl/adaptor_interface.h"

namespace recorder {
namespace {

namespace fs = std::filesystem;

constexpr char kReportBesideModule[] = "recorder-report.txt";
constexpr char kReportSuffix[] = ".txt";  // behind the tape's whole name

fs::path ThisModule() {
    static const char here = 0;
    return FileOf(&here);
}

fs::path ReportOf(const std::string& tape, const fs::path& folder) {
    return tape.empty() ? folder / kReportBesideModule : platform::FromNarrow(tape + kReportSuffix);
}

}  // namespace

StandingBetween::StandingBetween()
    : module_(ThisModule()),
      settings_(ReadSettings(module_.parent_path())),
      report_(ReportOf(settings_.tape.path, module_.parent_path())) {
    for (const std::string& mistake : settings_.mistakes)
        Tell(mistake);
    LoadCore();
}

void StandingBetween::LoadCore() {
    std::error_code error;
    if (settings_.core.empty())
        whyNoCore_ = std::string("neither ") + kCoreVariable + " nor a line \"core\" in " +
                     platform::Shown(module_.parent_path() / kSettingsFile) + " names the Core";
    else if (fs::equivalent(settings_.core, module_, error))
        whyNoCore_ = platform::Shown(settings_.core) + " is the recorder itself, and no Core";
    else if (const std::string why = core_.Load(settings_.core); !why.empty())
        whyNoCore_ = "the Core cannot be loaded, " + platform::Shown(settings_.core) + ": " + why;
    if (!whyNoCore_.empty()) Tell(whyNoCore_);
}

template <class Type>
Type& StandingBetween::Routine(const char* name) const {
    if (!core_.IsLoaded()) throw std::runtime_error(whyNoCore_);
    Type* const routine = core_.Routine<Type>(name);
    if (routine) return *routine;
    throw std::runtime_error(platform::Shown(settings_.core) + " exports no routine \"" + name +
                             '"');
}

std::uint32_t StandingBetween::GetVersion() {
    return Routine<TVL::GetVersionRoutine>(TVL::kGetVersionRoutine)();
}

// A Core of another version gets an adaptor of another version, which only that Core knows.
void StandingBetween::BeginRecording() {
    if (recording_ || (settings_.tape.path.empty() && !settings_.watches)) return;
    if (GetVersion() != static_cast<std::uint32_t>(TVL::kInterfaceVersion))
        return Tell("nothing is recorded: this recorder is for interface " +
                    std::to_string(TVL::kInterfaceVersion) + ", and the Core has interface " +
                    std::to_string(GetVersion()));
    auto made = std::make_unique<Recording>();
    if (!settings_.tape.path.empty()) {
        std::string whyNot;
        made->tape = TapeWriter::Open(settings_.tape, whyNot);
        if (!made->tape) Tell(whyNot);
    }
    if (settings_.watches) made->watch.emplace();
    if (!made->tape && !made->watch) return;
    if (made->tape) made->stream.Add(*made->tape);
    if (made->watch) made->stream.Add(*made->watch);
    Recorder& recorder = made->recorder.emplace(made->stream, platform::Shown(settings_.core));
    if (made->tape)
        made->tape->onNewSegment = [&recorder](const TapeWriter::TellObject& tell) {
            recorder.TellObjects(tell);
        };
    recording_ = std::move(made);
}

CoreInterface* StandingBetween::Attach(TVL::AdaptorInterface* adaptor) {
    auto& attach = Routine<TVL::AttachRoutine>(TVL::kAttachRoutine);
    try {
        BeginRecording();
    } catch (const std::exception& error) {
        Tell(std::string("nothing is recorded: ") + error.what());
    }
    return recording_ ? recording_->recorder->Attach(adaptor, &attach) : attach(adaptor);
}

void StandingBetween::Detach(CoreInterface* core) {
    auto& detach = Routine<TVL::DetachRoutine>(TVL::kDetachRoutine);
    if (!recording_) return detach(core);
    try {
        recording_->recorder->Detach(core, &detach);
    } catch (...) {
        TellFindings();
        throw;
    }
    TellFindings();
}

std::ofstream StandingBetween::OpenReport() const {
    std::ofstream report(report_, std::ios::app);
    if (!report) report.open(module_.parent_path() / kReportBesideModule, std::ios::app);
    return report;
}

// The report is a help, and no reason to fail.
void StandingBetween::Tell(const std::string& line) noexcept {
    try {
        std::cerr << "recorder: " << line << '\n';
        OpenReport() << line << '\n';
    } catch (...) {
    }
}

void StandingBetween::TellFindings() noexcept {
    try {
        const auto& [stream, tape, watch, recorder] = *recording_;
        const std::string whyStopped = tape ? tape->WhyStopped() : "";
        if (!whyStopped.empty() && !std::exchange(hasToldStop_, true)) Tell(whyStopped);
        if (!watch) return;
        const std::size_t count = watch->Findings().size();
        std::ofstream report = OpenReport();
        report << platform::Shown(settings_.core) << ": until it left the watch has found "
               << (count == 0 ? "nothing" : std::to_string(count)) << '\n';
        for (const Finding& finding : watch->Findings())
            report << "  " << Line(finding) << '\n';
    } catch (...) {
    }
}

}  // namespace recorder
