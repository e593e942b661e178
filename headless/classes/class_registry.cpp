#include "headless/classes/class_registry.h"

#include "headless/classes/own_descriptors.h"

namespace headless {
namespace {

template <class Matches>
ClassDesc* FirstThat(const std::vector<ClassDesc*>& added, Matches matches) {
    for (ClassDesc* descriptor : OwnDescriptors()) {
        if (matches(*descriptor)) return descriptor;
    }
    for (ClassDesc* descriptor : added) {
        if (matches(*descriptor)) return descriptor;
    }
    return nullptr;
}

}  // namespace

ClassRegistry& TheClasses() {
    static ClassRegistry registry;
    return registry;
}

void ClassRegistry::Add(ClassDesc* descriptor) {
    if (descriptor && !Find(descriptor->SuperClassID(), descriptor->ClassID()))
        added_.push_back(descriptor);
}

void ClassRegistry::Clear() {
    added_.clear();
}

ClassDesc* ClassRegistry::Find(SClass_ID superClass, Class_ID classId) const {
    return FirstThat(added_, [&](ClassDesc& descriptor) {
        return descriptor.SuperClassID() == superClass && descriptor.ClassID() == classId;
    });
}

ClassDesc* ClassRegistry::Find(SClass_ID superClass, std::string_view className) const {
    return FirstThat(added_, [&](ClassDesc& descriptor) {
        const char* name = descriptor.ClassName();
        return descriptor.SuperClassID() == superClass && name && className == name;
    });
}

}  // namespace headless
