#pragma once

#include <string>
#include <vector>

#include "host/class_desc.h"
#include "platform/win32.h"

namespace headless {

// A plug-in module in memory, as long as this object lives.
class PluginLibrary {
  public:
    // Loads the module and binds its exports; an empty `error` means that it is whole.
    PluginLibrary(const std::string& path, std::string& error);
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    std::vector<ClassDesc*> Descriptors() const;

  private:
    HMODULE module_ = nullptr;
    LibNumberClassesRoutine* numberClasses_ = nullptr;
    LibClassDescRoutine* classDesc_ = nullptr;
};

}  // namespace headless
