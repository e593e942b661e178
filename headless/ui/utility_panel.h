#pragma once

#include <string_view>

#include "host/class_desc.h"

class UtilityObj;

namespace headless {

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

}  // namespace headless
