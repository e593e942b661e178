#include "resources/module_instance.h"

namespace {
constinit HINSTANCE moduleInstance = nullptr;
}

HINSTANCE ModuleInstance() {
    return moduleInstance;
}

void SetModuleInstance(HINSTANCE module) {
    moduleInstance = module;
}
