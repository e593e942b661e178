#pragma once

#include "host/host_api.h"
#include "host/types.h"

HOST_API int GetTicksPerFrame();
HOST_API int GetFrameRate();

// Called at every change of the current time, once registered with Interface.
class HOST_API TimeChangeCallback {
  public:
    virtual ~TimeChangeCallback();
    virtual void TimeChanged(TimeValue t) = 0;
};
