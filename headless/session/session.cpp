#include "headless/session.h"

#include <algorithm>
#include <utility>

#include "headless/breaches/breach_book.h"
#include "headless/classes/class_registry.h"
#include "headless/classes/plugin_library.h"
#include "headless/control/animate_mode.h"
#include "headless/hold/undo_stream.h"
#include "headless/scene/listeners.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
#include "headless/scene/time_and_units.h"
#include "headless/scene_file/file_progress.h"
#include "headless/session/scene_files.h"
#include "headless/ui/command_panel.h"
#include "headless/ui/main_window.h"
#include "host/animate.h"
#include "host/gup.h"
#include "host/hold.h"
#include "host/notify.h"
#include "host/units.h"
#include "platform/message_box.h"

namespace headless {

SessionSettings WithUnitsPerMetre(double hostUnits) {
    SessionSettings settings;
    settings.unitType = UNITS_METERS;
    settings.unitScale = static_cast<float>(1 / hostUnits);
    return settings;
}

struct Session::State {
    std::vector<std::unique_ptr<PluginLibrary>> libraries;
    SessionSettings settings;
    std::vector<RunningUtility> kept;  // global utilities; the plug-ins' own
    SceneFiles files;
    bool isShutDown = false;

    void ApplySettings() const;
    bool Renew(int announcement);
};

void Session::State::ApplySettings() const {
    StartTimeline(settings.frameRate, settings.ticksPerFrame);
    SetMasterUnits(settings.unitType, settings.unitScale);
    ResetAnimateMode();
}

Session::Session(const SessionSettings& settings) : state_(std::make_unique<State>()) {
    hostIsDown = false;
    state_->settings = settings;
    state_->ApplySettings();
    ResetFrame();
    OpenMainWindow();
    TheScene().Open();
    ThePanel().Open();
}

Session::~Session() {
    ShutDown();
}

std::string Session::LoadPlugin(const std::string& path) {
    std::string error;
    auto library = std::make_unique<PluginLibrary>(path, error);
    if (!error.empty()) return error;
    for (ClassDesc* descriptor : library->Descriptors())
        TheClasses().Add(descriptor);
    state_->libraries.push_back(std::move(library));
    return {};
}

void Session::RegisterClass(ClassDesc* descriptor) {
    TheClasses().Add(descriptor);
}

namespace {

// A global utility may live as long as the process, longer than its module and whatever there
// pointed at it. Never destroyed, and never looked into: it keeps such a utility from being lost.
void RememberForever(GUP* utility) {
    static std::vector<GUP*>& utilities = *new std::vector<GUP*>;
    utilities.push_back(utility);
}

}  // namespace

void Session::Start() {
    for (ClassDesc* descriptor : std::vector(TheClasses().Added())) {
        if (descriptor->SuperClassID() != GUP_CLASS_ID) continue;
        auto* utility = static_cast<GUP*>(descriptor->Create());
        if (!utility) continue;
        RememberForever(utility);
        const HostEvent event("the start", descriptor->ClassName());
        if (utility->Start() == GUPRESULT_KEEP)
            state_->kept.push_back({descriptor, utility});
        else
            utility->DeleteThis();
    }
}

std::size_t Session::KeptUtilities() const {
    return state_->kept.size();
}

void Session::ShutDown() {
    if (std::exchange(state_->isShutDown, true)) return;
    SetFileProgressHandler({});
    Broadcast(NOTIFY_SYSTEM_SHUTDOWN);
    for (const RunningUtility& running : state_->kept) {
        const HostEvent event("the stop", running.descriptor->ClassName());
        running.utility->Stop();
    }
    for (const RunningUtility& running : std::exchange(state_->kept, {}))
        running.utility->DeleteThis();
    ThePanel().Close();
    EmptyScene();
    TheScene().Close();
    CloseMainWindow();
    ForgetTimeCallbacks();
    ForgetNotifications();
    ForgetMapDirectories();
    TheClasses().Clear();
    hostIsDown = true;
    state_->libraries.clear();
    OnMessageBox({});
}

bool Session::Undo() {
    return UndoStream::Get().Undo();
}

bool Session::Redo() {
    return UndoStream::Get().Redo();
}

std::vector<std::string> Session::UndoLabels() const {
    return UndoStream::Get().UndoLabels();
}

std::vector<std::string> Session::RedoLabels() const {
    return UndoStream::Get().RedoLabels();
}

bool Session::OpenUtility(std::string_view className) {
    return ThePanel().OpenUtility(className);
}

bool Session::CloseUtility() {
    return ThePanel().Utility().Close();
}

bool Session::IsUtilityOpen(std::string_view className) const {
    return ThePanel().Utility().IsOpen(className);
}

void Session::SetTaskMode(int mode) {
    ThePanel().SetTaskMode(mode);
}

std::vector<std::string> Session::Utilities() const {
    std::vector<std::string> names;
    for (ClassDesc* descriptor : TheClasses().Added()) {
        const char* const name = descriptor->ClassName();
        if (descriptor->SuperClassID() == UTILITY_CLASS_ID && name) names.emplace_back(name);
    }
    return names;
}

std::vector<PageView> Session::Pages() const {
    return ViewPages();
}

bool Session::PressButton(int controlId) {
    const HostEvent event("button", controlId);
    return PressPageButton(controlId);
}

bool Session::PressButton(std::string_view text) {
    const std::string shown(text);
    const HostEvent event("button", shown.c_str());
    return PressPageButton(text);
}

bool Session::PlaceButton(int controlId, const std::string& text) {
    return PlacePageButton(controlId, text.c_str());
}

std::size_t Session::Select(const std::vector<std::string>& names) {
    std::vector<SceneNode*> nodes;
    for (SceneNode* node : TheScene().InOrder()) {
        if (std::find(names.begin(), names.end(), node->Name()) != names.end())
            nodes.push_back(node);
    }
    SelectNodes(nodes, true);
    return nodes.size();
}

void Session::SetTime(TimeValue t) {
    MoveTime(t);
}

void Session::SetRange(Interval range) {
    SetAnimationRange(range);
}

void Session::PressAnimateButton(bool on) {
    if (!HostAnimateButtonEnabled()) return;
    if (on)
        AnimateOn();
    else
        AnimateOff();
}

bool Session::AnimateButtonEnabled() const {
    return HostAnimateButtonEnabled();
}

bool Session::AcceleratorsEnabled() const {
    return HostAcceleratorsEnabled();
}

// False: this is no moment for it.
bool Session::State::Renew(int announcement) {
    if (!FileWork::Hindrance().empty()) return false;
    Broadcast(announcement);
    EmptyScene();
    files.ForgetChunks();
    return true;
}

void Session::NewScene() {
    state_->Renew(NOTIFY_SYSTEM_PRE_NEW);
}

void Session::Reset() {
    if (!state_->Renew(NOTIFY_SYSTEM_PRE_RESET)) return;
    MoveTime(0);
    state_->ApplySettings();
}

FileOutcome Session::OpenScene(const std::string& path) {
    return state_->files.Open(path, state_->kept);
}

FileOutcome Session::SaveScene(const std::string& path) {
    return state_->files.Save(path, state_->kept);
}

FileOutcome Session::MergeScene(const std::string& path) {
    return MergeAndSelect(path);
}

void Session::OnProgress(FileProgressHandler handler) {
    SetFileProgressHandler(std::move(handler));
}

std::vector<UtilityChunksView> Session::UtilityChunks() const {
    return state_->files.Chunks();
}

void Session::Announce(int code, void* callParam) {
    Broadcast(code, callParam);
}

void Session::OnMessageBox(MessageBoxHandler handler) {
    if (!handler) {
        platform::SetMessageBoxHandler({});
        return;
    }
    platform::SetMessageBoxHandler(
        [handler = std::move(handler)](const platform::MessageBoxRequest& request) {
            handler({request.text, request.caption, request.style});
        });
}

}  // namespace headless
