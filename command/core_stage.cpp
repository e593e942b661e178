#include "command/core_stage.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string_view>
#include <utility>

#include "command/exit_status.h"
#include "command/output.h"
#include "headless/breaches.h"
#include "headless/control/keyframe_chunk.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/node.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "player/recovery/recover.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/scene_digest.h"
#include "replay/request.h"
#include "tvl/ids.h"
#include "tvl/log.h"
#include "tvl/panel.h"

namespace headless {
namespace {

constexpr char kPlugin[] = "TarvoOstrelUtil";

namespace variable = replay::variable;

// All that make up a request.
constexpr std::array kRequestVariables = {
    variable::kCaptures,     variable::kScale,         variable::kHeight,      variable::kFrom,
    variable::kTo,           variable::kStart,         variable::kRange,       variable::kOptimised,
    variable::kProgress,     variable::kInterruptible, variable::kMerge,       variable::kSample,
    variable::kSampleNodes,  variable::kInspect,       variable::kInspectTime, variable::kCsv,
    variable::kFollowCamera, variable::kGround,        variable::kGuide,       variable::kTake,
    variable::kReplace,      variable::kPartial};

// What a person typed to have the variable set.
struct OptionOfVariable {
    const char* variable;
    const char* option;
};
constexpr std::array kOptions = {OptionOfVariable{variable::kScale, "--scale"},
                                 OptionOfVariable{variable::kHeight, "--height"},
                                 OptionOfVariable{variable::kFrom, "--from"},
                                 OptionOfVariable{variable::kTo, "--to"},
                                 OptionOfVariable{variable::kStart, "--start"},
                                 OptionOfVariable{variable::kSample, "--times"},
                                 OptionOfVariable{variable::kInspectTime, "--time"},
                                 OptionOfVariable{variable::kTake, "--take"},
                                 OptionOfVariable{variable::kReplace, "--replace"},
                                 OptionOfVariable{variable::kPartial, "--partial"}};

bool HasKeyframes(Animatable* part) {
    if (!part) return false;
    if (IsKeyframes(part->ClassID())) return true;
    for (int index = 0; index < part->NumSubs(); ++index)
        if (HasKeyframes(part->SubAnim(index))) return true;
    return false;
}

std::string NotAttached(const std::string& why) {
    return "the Core could not be attached (" + why + ")";
}

// Where a variable stands by its whole name, which can be the beginning of another's.
std::size_t FindWord(const std::string& text, std::string_view word) {
    constexpr std::string_view kNameBytes = "ABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    std::size_t place = text.find(word);
    while (place != std::string::npos) {
        const std::size_t behind = place + word.size();
        if (behind == text.size() || kNameBytes.find(text[behind]) == std::string_view::npos) break;
        place = text.find(word, behind);
    }
    return place;
}

// The Core names variables, which a person knows as options.
std::string WithOptions(std::string text) {
    for (const auto& [name, option] : kOptions) {
        std::size_t place = FindWord(text, name);
        for (; place != std::string::npos; place = FindWord(text, name))
            text.replace(place, std::string_view(name).size(), option);
    }
    return text;
}

// A line that begins with an option says that the Core could make no sense of it.
[[noreturn]] void RefuseAsCore(const std::string& error) {
    const std::string told = WithOptions(error);
    const bool isUsage = std::ranges::any_of(kOptions, [&](const OptionOfVariable& known) {
        return told.starts_with(known.option + std::string(": "));
    });
    throw Failure(told, isUsage ? kWrongUsage : kFailed);
}

}  // namespace

std::string Lines(const std::vector<std::string>& values) {
    std::string lines;
    for (const std::string& value : values) {
        if (value.find('\n') != std::string::npos)
            throw Failure("a name with a line end cannot be told to the Core: " + value);
        lines += lines.empty() ? value : '\n' + value;
    }
    return lines;
}

CoreStage::CoreStage(const GuestChoice& guests, const SessionSettings& settings)
    : session_(settings) {
    session_.OnMessageBox(
        [this](const MessageBoxText& box) { pending_.boxes.push_back(box.text); });
    session_.OnProgress([this](const FileProgress& file) { return fileLine_.Tell(file); });
    platform::UseNamedRegistry();
    if (guests.guests == Guests::kPluginAlone) platform::HideRegistry();
    if (guests.guests == Guests::kNobody) return;
    if (guests.guests == Guests::kPluginAndCore) TakeSeat(guests);
    if (!platform::SetVariable(variable::kReport, report_.Path()))
        throw Failure(std::string("the environment has no room for ") + variable::kReport);
    Start(guests.plugin);
    if (!guests.core.empty() || guests.inPlace) NeedCore();
}

void CoreStage::TakeSeat(const GuestChoice& guests) {
    if (!guests.tape.empty()) TellOfUnsavedWork(guests.tape);
    if (StageRecorder::IsWanted(guests)) recorder_.emplace(guests);
    CoreBetween* const between = recorder_ ? &*recorder_ : guests.inPlace;
    if (guests.inPlace)
        seat_.emplace(*between);
    else if (between)
        seat_.emplace(guests.core, *between);
    else
        seat_.emplace(guests.core);
    if (recorder_) recorder_->NameCore(seat_->Library());
}

void CoreStage::TellOfUnsavedWork(const std::string& tape) {
    std::string word = player::WordOfUnsavedWork(tape, ProgressOn("Looking at", tape));
    EndIfStopped(tape + ": what is on it was being looked at");
    if (!word.empty()) pending_.complaints.push_back(std::move(word));
}

void CoreStage::TellOfTapeBeside(const std::string& scene) {
    std::filesystem::path tape = platform::FromNarrow(scene);
    TellOfUnsavedWork(platform::ToNarrow(tape.replace_extension("tape")));
}

// What keeps a Core away is an error in the trace, and the seat tells it; what one left behind that
// refused is a warning. The replay Core says by a report that it is there.
void CoreStage::Start(const std::string& plugin) {
    const std::string error = session_.LoadPlugin(plugin.empty() ? OrRefuse([] {
        return platform::BesideProgram(platform::ModuleFile(kPlugin));
    })
                                                                 : plugin);
    if (!error.empty()) throw Failure(error);
    session_.Start();
    isReplayCore_ = HasCore() && ReadReport(report_.Path());
    if (HasCore()) return;
    pending_.trace = trace_.TakeNew();
    std::erase_if(pending_.trace, [this](const TraceLine& line) {
        return !WantsCore() || line.level < TVL::Log::kWarning;
    });
    if (WantsCore()) absence_ = NotAttached(seat_->WhyAbsent());
}

// What there is no memory for stays untold.
CoreStage::~CoreStage() {
    try {
        session_.ShutDown();
        const StageNews news = TakeNews();
        PrintEach(std::cerr, kComplaint, news.complaints);
        PrintEach(std::cerr, kComplaint, news.breaches);
    } catch (...) {
    }
}

void CoreStage::NeedCore() const {
    if (!HasCore()) throw Failure(NotAttached(seat_->WhyAbsent()));
}

void CoreStage::NeedReplayCore() const {
    NeedCore();
    if (!isReplayCore_)
        throw Failure(seat_->Library() +
                      " is not the replay Core, which this needs; lumiset-headless run drives any "
                      "Core");
}

replay::Report CoreStage::AskCore(CoreRequest request) {
    NeedReplayCore();
    EndIfStopped("the Core was not asked any more");
    const bool isShown = platform::IsErrorStreamATerminal();
    request[variable::kProgress] = isShown ? "1" : "";
    request[variable::kInterruptible] = "1";
    for (const char* name : kRequestVariables) {
        const auto value = request.find(name);
        if (!platform::SetVariable(name, value == request.end() ? "" : value->second))
            throw Failure(std::string("what the Core is asked for is too long for ") + name +
                          ", a variable of the environment");
    }
    std::filesystem::remove(platform::FromNarrow(report_.Path()));
    if (!session_.IsUtilityOpen(TVL::kPanelUtility)) session_.OpenUtility(TVL::kPanelUtility);
    if (!session_.PressButton(TVL::kStartButton))
        throw Failure(platform::ModuleFile(kPlugin) + ": its panel \"" + TVL::kPanelUtility +
                      "\" has no button " + std::to_string(TVL::kStartButton));
    fileLine_.End();
    std::optional<replay::Report> report = ReadReport(report_.Path());
    if (!report) throw Failure("the Core reported nothing of its work");
    for (const auto* lines : {&report->warnings, &report->faults})
        reported_.insert(reported_.end(), lines->begin(), lines->end());
    reported_.push_back(report->error);
    if (!report->error.empty()) EndIfStopped(report->error);
    if (!report->error.empty()) RefuseAsCore(report->error);
    for (replay::CaptureReport& capture : report->captures)
        capture.error = WithOptions(std::move(capture.error));
    return *std::move(report);
}

replay::Report CoreStage::AskCoreForFile(CoreRequest request, const CoreFile& file) {
    request[variable::kCsv] = file.Path();
    try {
        return AskCore(request);
    } catch (const Failure& failure) {
        throw Failure(file.Named(failure.what()), failure.Status());
    }
}

// A button has no answer.
void CoreStage::ConvertControllers() {
    NeedCore();
    LongWork converting("Converting controllers", 1);
    if (!OrRefuse([this] { return seat_->Press(TVL::kConvertAllControllers); }))
        throw Failure(seat_->Library() + ": this Core has no button for option " +
                      std::to_string(TVL::kConvertAllControllers));
    EndIfStopped("the controllers are converted");
    for (const NodeView& view : Nodes()) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(view.handle);
        if (HasKeyframes(node->GetTMController()) || HasKeyframes(node->GetObjectRef()))
            throw Failure(view.name + ": not all controllers of this node could be converted");
    }
}

void CoreStage::Open(const std::string& scene) {
    Take(session_.OpenScene(scene));
    NoteScene(recorder::note::kOpened, scene);
}

void CoreStage::Save(const std::string& scene) {
    FileOutcome outcome = session_.SaveScene(scene);
    if (outcome.error.empty()) {
        NoteSaved(scene);
        NoteScene(recorder::note::kSaved, scene);
    }
    Take(std::move(outcome));
}

void CoreStage::SaveWhole(const std::string& scene) {
    session_.OnProgress([this](const FileProgress& file) { return fileLine_.Tell(file), true; });
    Save(scene);
    session_.OnProgress([this](const FileProgress& file) { return fileLine_.Tell(file); });
}

void CoreStage::MergeByHost(const std::string& scene) {
    Take(session_.MergeScene(scene));
    NoteScene(recorder::note::kMerged, scene);
}

void CoreStage::EmptyScene(void (Session::*how)()) {
    (session_.*how)();
    Note(recorder::note::kNew, {});
}

void CoreStage::Note(std::string_view word, std::string_view about) noexcept {
    if (recorder_) recorder_->Note(word, about);
}

void CoreStage::NoteScene(std::string_view word, const std::string& scene) {
    if (recorder_) recorder_->NoteScene(word, scene);
}

std::vector<recorder::Finding> CoreStage::Findings() const {
    return recorder_ ? recorder_->Findings() : std::vector<recorder::Finding>();
}

StageNews CoreStage::TakeNews() {
    if (HasCore()) seat_->WriteTrace();
    std::ranges::move(trace_.TakeNew(), std::back_inserter(pending_.trace));
    for (std::string& worry : Worries(pending_.trace))
        if (std::ranges::find(reported_, worry) == reported_.end())
            pending_.complaints.push_back(std::move(worry));
    if (recorder_)
        std::ranges::move(recorder_->TakeTroubles(), std::back_inserter(pending_.complaints));
    pending_.breaches = TakeBreachLines();
    return std::exchange(pending_, {});
}

StageNews CoreStage::TakeNewsInOne() {
    StageNews news = TakeNews();
    std::ranges::move(news.breaches, std::back_inserter(news.complaints));
    if (!absence_.empty())
        news.complaints.insert(news.complaints.begin(), std::exchange(absence_, {}));
    return news;
}

void CoreStage::Take(FileOutcome outcome) {
    fileLine_.End();
    if (!outcome.error.empty()) EndIfStopped(outcome.error);
    if (!outcome.error.empty()) throw Failure(outcome.error);
    std::ranges::move(outcome.complaints, std::back_inserter(pending_.complaints));
}

std::size_t CoreStage::ShutDown() {
    // The plug-in's global utility lives as long as the process.
    const std::size_t utilities = session_.KeptUtilities();
    session_.ShutDown();
    return TakeCensus().heapBlocks - utilities;
}

}  // namespace headless
