#pragma once

#include "host/host_api.h"

// The mode in which SetValue of a controller stores a key. Suspending turns it off until it is
// resumed, with what was set in between forgotten; suspensions nest.
HOST_API bool Animating();
HOST_API void AnimateOn();
HOST_API void AnimateOff();
HOST_API void SuspendAnimate();
HOST_API void ResumeAnimate();
