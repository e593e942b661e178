#include <cstdint>

#include "host/class_desc.h"
#include "plugin/descriptors.h"

// The routines by which the host knows a plug-in library. Their ordinals on Windows stand in
// exports.def.
#if defined(_WIN32)
#define PLUGIN_EXPORT extern "C"
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

PLUGIN_EXPORT const char* LibDescription();
PLUGIN_EXPORT int LibNumberClasses();
PLUGIN_EXPORT ClassDesc* LibClassDesc(int index);
PLUGIN_EXPORT std::uint32_t LibVersion();

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
