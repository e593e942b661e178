#pragma once

#include <string>

#include "platform/win32.h"
#include "tvl/core_element.h"
#include "tvl/core_interface.h"

// The link to the Core, and the questions that every room may ask it. The one link belongs to the
// UtilityManager; a link without a Core is the normal state of a host on which none is installed.
struct CoreLink {
    HMODULE coreModule = nullptr;   // the loaded library
    CoreInterface* core = nullptr;  // the Core's own; attached means that it is not null
};

// The process's link.
CoreLink& TheCoreLink();

// Null while no Core is attached. A call to the Core may detach it: ask again after each.
inline CoreInterface* AttachedCore() {
    return TheCoreLink().core;
}

// The Core is attached and its routine `detach` is running: what is stored now is for the next one.
bool IsCoreLeaving();

// False while no Core is attached, else what the Core says.
bool IsCoreRunning();

// The value of an option of the panel; `preset` where there is no Core, or it does not know the
// option.
bool CoreOption(int option, bool preset);

// The name of an owner's plug-in; empty without owner or plug-in record.
std::string PluginNameOf(const TVL::CoreElement* owner);
