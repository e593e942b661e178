#pragma once

// The animate mode beyond host/animate.h: back to off, with no suspension open.
namespace headless {

void ResetAnimateMode();

}  // namespace headless
