#include "headless/ui/motion_panel.h"

#include <utility>

#include "headless/scene/selection.h"
#include "host/interface.h"

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

}  // namespace headless
