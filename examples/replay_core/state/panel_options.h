#pragma once

#include <string>
#include <vector>

#include "tvl/xml_node.h"

namespace replay {

// An option of the adaptor's, as its panel describes it.
struct PanelOption {
    int id = 0;
    std::string name;
    bool isButton = false;
    bool value = false;  // of a check box
};

class PanelOptions {
  public:
    // Takes every check box and button of the panel, wherever in its groups and lists they stand,
    // each check box with the value that the panel gives it.
    explicit PanelOptions(const XMLNode& panel);

    const std::vector<PanelOption>& All() const { return options_; }

    const PanelOption* Find(int id) const;  // null if the panel has none of that id

    void Set(int id, bool value);  // nothing if the panel has none of that id

  private:
    std::vector<PanelOption> options_;
};

}  // namespace replay
