#pragma once

#include "host/animate.h"

// The animate mode beyond host/animate.h.
namespace headless {

// Back to off, with no suspension open.
void ResetAnimateMode();

// What is set while it lives is no key.
class WithoutKeys {
  public:
    WithoutKeys() { SuspendAnimate(); }
    ~WithoutKeys() { ResumeAnimate(); }
    WithoutKeys(const WithoutKeys&) = delete;
    WithoutKeys& operator=(const WithoutKeys&) = delete;
};

}  // namespace headless
