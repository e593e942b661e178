#pragma once

#include <optional>
#include <string>

#include "platform/platform_api.h"

namespace platform {

// From here on this process finds an empty registry, as on a computer where nothing is installed,
// whatever the real one holds. Keys that are open read on.
PLATFORM_API void HideRegistry();

// From here on this process, and each that it starts and that calls UseNamedRegistry, finds in the
// registry what the .reg file holds at this moment and nothing else. The real one is left as it is.
// On Windows the keys are real ones below a key of this process's own, which goes with it.
PLATFORM_API void UseRegistryFile(const std::string& path);

// Does so with the file that the environment variable LUMISET_REGISTRY names, if there is one.
PLATFORM_API void UseNamedRegistry();

// A text of the registry. Its key begins with its root, as in a .reg file.
struct RegistryText {
    std::string key;
    std::string name;
    std::string text;
};

// From here on this process finds the text there, whatever the registry holds, real or not; the key
// need not be there. One at a time: the next takes its place, and nothing takes it away again. On
// Windows the rest of its root is out of sight meanwhile but for the values of its key, and it is
// laid over what is found at that moment, so that a registry file that is used later hides it.
PLATFORM_API void LayOverRegistry(const std::optional<RegistryText>& text);

inline constexpr char kRegistryVariable[] = "LUMISET_REGISTRY";

}  // namespace platform
