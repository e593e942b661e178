#pragma once

#include <unordered_map>

#include "host/reference.h"

namespace headless {

// What one act of copying has made of what. An object that is asked for twice is copied once; one
// whose class cannot copy itself stands as null.
class CopyMap final : public RemapDir {
  public:
    RefTargetHandle FindMapping(RefTargetHandle from) override;
    void AddEntry(RefTargetHandle from, RefTargetHandle to) override;
    RefTargetHandle CloneRef(RefTargetHandle from) override;

  private:
    std::unordered_map<RefTargetHandle, RefTargetHandle> copies_;
};

}  // namespace headless
