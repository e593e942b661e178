#include <cstdint>

#include "host/class_desc.h"
#include "platform/modules.h"
#include "plugin/descriptors.h"

// The routines by which the host knows a plug-in library. Their ordinals on Windows stand in
// exports.def.
MODULE_ROUTINE const char* LibDescription();
MODULE_ROUTINE int LibNumberClasses();
MODULE_ROUTINE ClassDesc* LibClassDesc(int index);
MODULE_ROUTINE std::uint32_t LibVersion();

const char* LibDescription() {
    return "Tarvo Lumiset v2.5";
}

int LibNumberClasses() {
    return kDescriptorCount;
}

ClassDesc* LibClassDesc(int index) {
    return DescriptorAt(index);
}

std::uint32_t LibVersion() {
    return kHostVersion;
}
