#pragma once

#include <string_view>

#include "headless/scene/selection.h"
#include "host/class_desc.h"

class Control;
class UtilityObj;

namespace headless {

// Shows the transform controller of the selected node, if exactly one is selected, while the
// command panel is at its motion task.
class MotionPanel {
  public:
    void Open();
    void Close();

  private:
    Control* edited_ = nullptr;
};

// Holds the one utility that is open, which stays open when another task of the command panel is
// chosen.
class UtilityPanel {
  public:
    // False if there is no utility class of that name. One that is open already stays.
    bool Open(std::string_view className);
    bool Close();  // false: none was open
    bool IsOpen(std::string_view className) const;

    void TellSelectionChanged();

  private:
    ClassDesc* descriptor_ = nullptr;
    UtilityObj* utility_ = nullptr;
};

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
