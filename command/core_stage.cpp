#include "command/core_stage.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>

#include "command/core_report.h"
#include "command/exit_status.h"
#include "headless/breaches.h"
#include "headless/scene_view.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/win32.h"
#include "replay/request.h"
#include "tvl/installation.h"

namespace headless {
namespace {

constexpr char kPlugin[] = "TarvoOstrelUtil";
constexpr char kUtilityName[] = "Tarvo Lumiset Util";
constexpr int kStartButton = 1046;

namespace variable = replay::variable;

// All that make up a request.
constexpr std::array kRequestVariables = {
    variable::kCaptures,    variable::kScale,  variable::kOptimised,   variable::kProgress,
    variable::kMerge,       variable::kSample, variable::kSampleNodes, variable::kInspect,
    variable::kInspectTime, variable::kPress,  variable::kCsv,         variable::kFollowCamera,
    variable::kGround,      variable::kGuide,  variable::kTake,        variable::kReplace,
    variable::kPartial};

// What a person typed to have the variable set.
struct OptionOfVariable {
    const char* variable;
    const char* option;
};
constexpr std::array kOptions = {OptionOfVariable{variable::kScale, "--scale"},
                                 OptionOfVariable{variable::kSample, "--times"},
                                 OptionOfVariable{variable::kInspectTime, "--time"},
                                 OptionOfVariable{variable::kTake, "--take"},
                                 OptionOfVariable{variable::kReplace, "--replace"},
                                 OptionOfVariable{variable::kPartial, "--partial"}};

// Of any length.
std::optional<std::string> Read(HKEY key, const char* name) {
    DWORD size = 0;
    if (RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    std::string text(size, '\0');
    if (RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()),
                         &size) != ERROR_SUCCESS)
        return std::nullopt;
    return text.substr(0, text.find('\0'));
}

std::optional<std::string> InstallPath() {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, TVL::kInstallKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    std::optional<std::string> path = Read(key, TVL::kInstallValue);
    RegCloseKey(key);
    return path;
}

// The system's word for a failure lasts no longer than to its next call, so that it is asked anew.
std::string WhyNotLoaded(const std::string& library) {
    const HMODULE module = LoadLibraryA(library.c_str());
    if (!module) return library + " cannot be loaded: " + platform::LastLoadFailure();
    FreeLibrary(module);
    return library + " could not be loaded at first";
}

// Why the plug-in could not load a Core, in one line that names where it looked for one.
std::string WhyNoCore() {
    const std::optional<std::string> folder = InstallPath();
    const std::string value = std::string("\"") + TVL::kInstallValue + '"';
    if (!folder) return "no " + value + " in HKEY_LOCAL_MACHINE\\" + TVL::kInstallKey;
    if (folder->size() > TVL::kLongestInstallPath)
        return value + " of the install key is longer than " +
               std::to_string(TVL::kLongestInstallPath) + " bytes: " + *folder;
    return WhyNotLoaded(*folder + TVL::kCoreLibrary);
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

// The Core names variables, which a person knows as options. A line that begins with one says that
// the Core could make no sense of it.
[[noreturn]] void Refuse(std::string error) {
    int status = kFailed;
    for (const auto& [name, option] : kOptions) {
        const std::size_t place = FindWord(error, name);
        if (place == std::string::npos) continue;
        error.replace(place, std::string_view(name).size(), option);
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

CoreStage::CoreStage(const GuestChoice& choice, const SessionSettings& settings)
    : guests_(choice.guests), session_(settings) {
    session_.OnMessageBox([this](const MessageBoxText& box) { boxTexts_.push_back(box.text); });
    platform::UseNamedRegistry();
    if (guests_ == Guests::kPluginAlone) platform::HideRegistry();
    if (guests_ == Guests::kNobody) return;
    const std::string error =
        session_.LoadPlugin(platform::BesideProgram(platform::ModuleFile(kPlugin)));
    if (!error.empty()) throw Failure(error);
    session_.Start();
}

replay::Report CoreStage::AskCore(const CoreRequest& request) {
    for (const char* name : kRequestVariables) {
        const auto value = request.find(name);
        if (!platform::SetVariable(name, value == request.end() ? "" : value->second))
            throw Failure(std::string("what the Core is asked for is too long for ") + name +
                          ", a variable of the environment");
    }
    platform::SetVariable(variable::kReport, report_.Path());
    std::filesystem::remove(platform::FromNarrow(report_.Path()));
    if (session_.KeptUtilities() == 0) throw Failure(NotAttached(WhyNoCore()));
    if (!session_.IsUtilityOpen(kUtilityName)) session_.OpenUtility(kUtilityName);
    const std::size_t boxes = boxTexts_.size();
    if (!session_.PressButton(kStartButton))
        throw Failure(platform::ModuleFile(kPlugin) + ": its panel \"" + kUtilityName +
                      "\" has no button " + std::to_string(kStartButton));
    std::optional<replay::Report> report = ReadReport(report_.Path());
    if (!report && boxTexts_.size() > boxes) {
        boxTexts_.resize(boxes);
        throw Failure(NotAttached("it is of another version, or refused to start"));
    }
    if (!report) throw Failure("the Core reported nothing of its work");
    if (!report->error.empty()) Refuse(report->error);
    return *std::move(report);
}

void CoreStage::Open(const std::string& scene) {
    Take(session_.OpenScene(scene));
}

void CoreStage::Save(const std::string& scene) {
    FileOutcome outcome = session_.SaveScene(scene);
    if (outcome.error.empty()) NoteSaved(scene);
    Take(std::move(outcome));
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
