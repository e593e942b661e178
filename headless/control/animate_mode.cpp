#include "headless/control/animate_mode.h"

#include <vector>

#include "host/animate.h"

namespace headless {
namespace {

bool animating = false;
std::vector<bool> suspended;  // the mode at each suspension that is open, outermost first

}  // namespace

void ResetAnimateMode() {
    animating = false;
    suspended.clear();
}

}  // namespace headless

bool Animating() {
    return headless::animating;
}
void AnimateOn() {
    headless::animating = true;
}
void AnimateOff() {
    headless::animating = false;
}

void SuspendAnimate() {
    headless::suspended.push_back(headless::animating);
    headless::animating = false;
}

void ResumeAnimate() {
    if (headless::suspended.empty()) return;
    headless::animating = headless::suspended.back();
    headless::suspended.pop_back();
}
