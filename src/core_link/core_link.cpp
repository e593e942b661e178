#include "core_link/core_link.h"

bool IsCoreRunning() {
    CoreInterface* const core = AttachedCore();
    return core && core->IsCoreRunning();
}

bool CoreOption(int option, bool preset) {
    bool value = preset;
    if (CoreInterface* const core = AttachedCore()) core->GetOptionValue(option, &value);
    return value;
}
