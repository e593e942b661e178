#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "headless/references/reference_record.h"
#include "host/reference.h"

namespace headless {

// What one act of copying has made of what. An object that is asked for twice is copied once; one
// whose class cannot copy itself stands as null.
class CopyMap final : public RemapDir {
  public:
    RefTargetHandle FindMapping(RefTargetHandle from) override;
    void AddEntry(RefTargetHandle from, RefTargetHandle to) override;
    RefTargetHandle CloneRef(RefTargetHandle from) override;

    bool IsWhole() const;  // everything that was asked for could be copied

    // The records that put each copy in the place of its original, for all who refer to that and
    // have not been copied themselves. They have not been done yet.
    std::vector<std::unique_ptr<ReferenceRecord>> Replacements() const;

    // Ends the copies, of which nobody has made use.
    void Discard();

  private:
    std::unordered_map<RefTargetHandle, RefTargetHandle> copies_;
};

}  // namespace headless
