#include "platform/posix/native_path.h"

#include "platform/common/text.h"

namespace platform {

std::string NativePath(std::string_view path) {
    std::string native;
    native.reserve(path.size());
    for (const char letter : path) {
        const char turned = letter == '\\' ? '/' : letter;
        if (turned == '/' && native.ends_with('/')) continue;
        native += turned;
    }
    return native;
}

std::string NativeModulePath(std::string_view path) {
    constexpr std::string_view foreign = ".dll";
    std::string native = NativePath(path);
    if (native.size() < foreign.size()) return native;
    const std::size_t stem = native.size() - foreign.size();
    if (EqualWithoutCase(std::string_view(native).substr(stem), foreign)) {
        native.replace(stem, foreign.size(), ".so");
    }
    return native;
}

}  // namespace platform
