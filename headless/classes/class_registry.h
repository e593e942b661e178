#pragma once

#include <string_view>
#include <vector>

#include "host/class_desc.h"

namespace headless {

// The classes that are known to the running host: its own, those linked by the program, and those
// of the loaded plug-ins.
class ClassRegistry {
  public:
    // The descriptor is not owned. One that describes a known class again is passed over.
    void Add(ClassDesc* descriptor);
    void Clear();  // leaves the host's own

    ClassDesc* Find(SClass_ID superClass, Class_ID classId) const;
    ClassDesc* Find(SClass_ID superClass, std::string_view className) const;

    // Those that were added, in their order.
    const std::vector<ClassDesc*>& Added() const { return added_; }

  private:
    std::vector<ClassDesc*> added_;
};

ClassRegistry& TheClasses();

}  // namespace headless
