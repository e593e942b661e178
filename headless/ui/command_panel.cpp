#include "headless/ui/command_panel.h"

#include <utility>

#include "headless/classes/class_registry.h"
#include "headless/scene/selection.h"
#include "headless/ui/main_window.h"
#include "host/interface.h"
#include "host/utility_obj.h"

namespace headless {

void MotionPanel::Open() {
    SceneNode* const node = edited_ ? nullptr : SoleSelectedNode();
    if (!node) return;
    edited_ = node->GetTMController();
    if (edited_) edited_->BeginEditParams(GetCOREInterface(), 0, nullptr);
}

void MotionPanel::Close() {
    if (Control* closing = std::exchange(edited_, nullptr))
        closing->EndEditParams(GetCOREInterface(), 0, nullptr);
}

bool UtilityPanel::Open(std::string_view className) {
    if (IsOpen(className)) return true;
    ClassDesc* descriptor = TheClasses().Find(UTILITY_CLASS_ID, className);
    if (!descriptor) return false;
    Close();
    auto* utility = static_cast<UtilityObj*>(descriptor->Create());
    if (!utility) return false;
    descriptor_ = descriptor;
    utility_ = utility;
    utility->BeginEditParams(GetCOREInterface(), nullptr);
    return true;
}

bool UtilityPanel::Close() {
    UtilityObj* closing = std::exchange(utility_, nullptr);
    descriptor_ = nullptr;
    if (!closing) return false;
    closing->EndEditParams(GetCOREInterface(), nullptr);
    closing->DeleteThis();
    return true;
}

bool UtilityPanel::IsOpen(std::string_view className) const {
    return utility_ && className == descriptor_->ClassName();
}

void UtilityPanel::TellSelectionChanged() {
    if (utility_) utility_->SelectionSetChanged(GetCOREInterface(), nullptr);
}

CommandPanel& ThePanel() {
    static CommandPanel panel;
    return panel;
}

void CommandPanel::Open() {
    taskMode_ = TASK_MODE_CREATE;
    WatchEdits(this);
}

void CommandPanel::Close() {
    WatchEdits(nullptr);
    motion_.Close();
    utility_.Close();
    DeleteAllPages();
}

void CommandPanel::SetTaskMode(int mode) {
    if (mode == taskMode_ || mode < TASK_MODE_CREATE || mode > TASK_MODE_UTILITY) return;
    motion_.Close();
    taskMode_ = mode;
    if (mode == TASK_MODE_MOTION) motion_.Open();
}

bool CommandPanel::OpenUtility(std::string_view className) {
    if (!utility_.Open(className)) return false;
    SetTaskMode(TASK_MODE_UTILITY);
    return true;
}

void CommandPanel::AfterEditChange() {
    if (taskMode_ == TASK_MODE_MOTION) motion_.Open();
    utility_.TellSelectionChanged();
}

}  // namespace headless
