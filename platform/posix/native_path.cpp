#include "platform/posix/native_path.h"

#include <filesystem>
#include <system_error>

#include "platform/beside_program.h"
#include "platform/registry_text/text.h"

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

std::filesystem::path ProgramFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace platform
