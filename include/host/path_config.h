#pragma once

#include "host/host_api.h"
#include "host/types.h"

// Where the running host looks for the bitmaps of its scenes.
class HOST_API IPathConfigMgr {
  public:
    virtual ~IPathConfigMgr();

    // The host's own; never null.
    static IPathConfigMgr* GetPathConfigMgr();

    // Adds a directory to the bitmap search path until the host ends, behind those that are there.
    // With `update` the host looks for the scene's bitmaps again. False: the text is empty, or the
    // directory is on the path already.
    virtual bool AddSessionMapDir(const HostString& directory, bool update = true) = 0;
};
