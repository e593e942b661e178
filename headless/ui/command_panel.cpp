#include "headless/ui/command_panel.h"

#include "headless/ui/main_window.h"
#include "headless/ui/rollup_pages.h"
#include "host/interface.h"

namespace headless {

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
