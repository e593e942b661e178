#pragma once

#include "headless/scene/edit_watch.h"
#include "headless/ui/motion_panel.h"
#include "headless/ui/utility_panel.h"

namespace headless {

// The command panel: the task that is chosen, and what is open in it.
class CommandPanel final : public EditWatcher {
  public:
    void Open();   // at the create task
    void Close();  // with everything in it

    int TaskMode() const { return taskMode_; }
    void SetTaskMode(int mode);  // a mode that does not exist is passed over

    // Chooses the utility task too.
    bool OpenUtility(std::string_view className);
    UtilityPanel& Utility() { return utility_; }

    void BeforeEditChange() override { motion_.Close(); }
    void AfterEditChange() override;

  private:
    int taskMode_ = 0;
    MotionPanel motion_;
    UtilityPanel utility_;
};

CommandPanel& ThePanel();

}  // namespace headless
