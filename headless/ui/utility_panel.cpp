#include "headless/ui/utility_panel.h"

#include <utility>

#include "headless/classes/class_registry.h"
#include "host/utility_obj.h"

namespace headless {

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

}  // namespace headless
