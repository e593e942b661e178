#include "command/core_stage.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>

#include "command/core_environment.h"
#include "command/exit_status.h"
#include "command/missing_core.h"
#include "headless/breaches.h"
#include "headless/scene_view.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/registry.h"

namespace headless {
namespace {

constexpr char kPlugin[] = "TarvoOstrelUtil";
constexpr char kUtilityName[] = "Tarvo Lumiset Util";
constexpr int kStartButton = 1046;

std::string NotAttached(const std::string& why) {
    return "the Core could not be attached (" + why + ")";
}

// Where a variable stands by its whole name, which can be the beginning of another's.
std::size_t FindWord(const std::string& text, std::string_view variable) {
    constexpr std::string_view kNameBytes = "ABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    std::size_t place = text.find(variable);
    while (place != std::string::npos) {
        const std::size_t behind = place + variable.size();
        if (behind == text.size() || kNameBytes.find(text[behind]) == std::string_view::npos) break;
        place = text.find(variable, behind);
    }
    return place;
}

// The Core names variables, which a person knows as options. A line that begins with one says that
// the Core could make no sense of it.
[[noreturn]] void Refuse(std::string error) {
    int status = kFailed;
    for (const auto& [variable, option] : kOptions) {
        const std::size_t place = FindWord(error, variable);
        if (place == std::string::npos) continue;
        error.replace(place, std::string_view(variable).size(), option);
        if (error.starts_with(option + std::string(": "))) status = kWrongUsage;
    }
    throw Failure(error, status);
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

CoreStage::CoreStage(Guests guests, const SessionSettings& settings)
    : guests_(guests), session_(settings) {
    session_.OnMessageBox([this](const MessageBoxText& box) { boxTexts_.push_back(box.text); });
    platform::UseNamedRegistry();
    if (guests == Guests::kPluginAlone) platform::HideRegistry();
    if (guests == Guests::kNobody) return;
    const std::string error =
        session_.LoadPlugin(platform::BesideProgram(platform::ModuleFile(kPlugin)));
    if (!error.empty()) throw Failure(error);
    session_.Start();
}

CoreReport CoreStage::AskCore(const CoreRequest& request) {
    for (const char* variable : kRequestVariables) {
        const auto value = request.find(variable);
        if (!platform::SetVariable(variable, value == request.end() ? "" : value->second))
            throw Failure(std::string("what the Core is asked for is too long for ") + variable +
                          ", a variable of the environment");
    }
    platform::SetVariable(kReportVariable, report_.Path());
    std::filesystem::remove(platform::FromNarrow(report_.Path()));
    if (session_.KeptUtilities() == 0) throw Failure(NotAttached(WhyNoCore()));
    if (!session_.IsUtilityOpen(kUtilityName)) session_.OpenUtility(kUtilityName);
    const std::size_t boxes = boxTexts_.size();
    if (!session_.PressButton(kStartButton))
        throw Failure(platform::ModuleFile(kPlugin) + ": its panel \"" + kUtilityName +
                      "\" has no button " + std::to_string(kStartButton));
    CoreReport report = CoreReport::Read(report_.Path());
    if (report.IsEmpty() && boxTexts_.size() > boxes) {
        boxTexts_.resize(boxes);
        throw Failure(NotAttached("it is of another version, or refused to start"));
    }
    if (report.IsEmpty()) throw Failure("the Core reported nothing of its work");
    if (report.Text("status") != "ok") Refuse(report.Text("error"));
    return report;
}

void CoreStage::Open(const std::string& scene) {
    Take(session_.OpenScene(scene));
}

void CoreStage::Save(const std::string& scene) {
    Take(session_.SaveScene(scene));
}

void CoreStage::MergeByHost(const std::string& scene) {
    Take(session_.MergeScene(scene));
}

const std::vector<std::string>& CoreStage::Complaints() {
    std::ranges::move(TakeBreachLines(), std::back_inserter(complaints_));
    return complaints_;
}

void CoreStage::Take(FileOutcome outcome) {
    if (!outcome.error.empty()) throw Failure(outcome.error);
    std::ranges::move(outcome.complaints, std::back_inserter(complaints_));
}

std::size_t CoreStage::ShutDown() {
    // The plug-in's global utility lives as long as the process.
    const std::size_t utilities = session_.KeptUtilities();
    session_.ShutDown();
    return TakeCensus().heapBlocks - utilities;
}

}  // namespace headless
