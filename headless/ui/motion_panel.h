#pragma once

class Control;

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

}  // namespace headless
