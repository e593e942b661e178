#include "headless/classes/plugin_library.h"

#include <cstdio>

#include "platform/modules.h"

namespace headless {
namespace {

template <class Routine>
Routine* Bind(HMODULE module, const char* name, std::string& missing) {
    Routine* const found = platform::Routine<Routine>(module, name);
    if (!found && missing.empty()) missing = name;
    return found;
}

std::string Hexadecimal(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", number);
    return text;
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path, std::string& error) {
    error.clear();
    module_ = LoadLibraryA(path.c_str());
    if (!module_) {
        error = path + ": cannot be loaded (" + platform::LastLoadFailureOf(path) + ")";
        return;
    }
    std::string missing;
    Bind<LibDescriptionRoutine>(module_, "LibDescription", missing);
    numberClasses_ = Bind<LibNumberClassesRoutine>(module_, "LibNumberClasses", missing);
    classDesc_ = Bind<LibClassDescRoutine>(module_, "LibClassDesc", missing);
    const auto version = Bind<LibVersionRoutine>(module_, "LibVersion", missing);
    if (!missing.empty())
        error = path + ": does not export " + missing;
    else if (version() != kHostVersion)
        error = path + ": is for host version " + Hexadecimal(version()) + ", not " +
                Hexadecimal(kHostVersion);
}

PluginLibrary::~PluginLibrary() {
    if (module_) FreeLibrary(module_);
}

std::vector<ClassDesc*> PluginLibrary::Descriptors() const {
    std::vector<ClassDesc*> descriptors;
    for (int i = 0; i < numberClasses_(); ++i) {
        if (ClassDesc* descriptor = classDesc_(i)) descriptors.push_back(descriptor);
    }
    return descriptors;
}

}  // namespace headless
