#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "foundation/thrown.h"
#include "platform/win32.h"
#include "tvl/core_element.h"
#include "tvl/core_interface.h"

// The link to the Core, the calls into it, and the questions that every room may ask it. The one
// link belongs to the UtilityManager; a link without a Core is the normal state of a host on which
// none is installed.
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

// What the Core has opened in the adaptor so far.
struct CoreBrackets {
    int recordings = 0;       // open ones
    int focus = 0;            // depth of RequestFocus calls
    std::uint32_t nests = 0;  // of undo groups, that ever began
};

// The adaptor's. Nothing is open where there is no adaptor.
CoreBrackets BracketsSoFar();

// Whoever would have ended what was opened since has been thrown out of. Recording and focus end. A
// hold that the groups began is cancelled; the names of the groups wait for their own endings,
// which end nothing else.
void EndBracketsSince(const CoreBrackets& before);

// For a call that threw: tells the trace, and its file, and ends what it left open.
void AfterThrow(const char* name, std::string_view words, const CoreBrackets& before) noexcept;

// The one way into the Core: its routines, CoreInterface, owners, node listeners, undo chunks and
// message nodes. Nothing that the Core throws gets past it: the trace names the call and what was
// thrown, and the host goes on. Calls nest, since the Core may call back. False if it threw.
template <class Call>
bool CallCore(const char* name, Call&& call) noexcept {
    const CoreBrackets before = BracketsSoFar();
    const std::optional<std::string> thrown = TVL::ThrownBy(call);
    if (thrown) AfterThrow(name, *thrown, before);
    return !thrown;
}

// What the call gives; `fallback` if it threw.
template <class Result, class Call>
Result CallCore(const char* name, Result fallback, Call&& call) noexcept {
    CallCore(name, [&] { fallback = call(); });
    return fallback;
}

// False while no Core is attached, else what the Core says.
bool IsCoreRunning();

// The value of an option of the panel; `preset` where there is no Core, or it does not know the
// option.
bool CoreOption(int option, bool preset);

// The name of an owner's plug-in; empty without owner or plug-in record.
std::string PluginNameOf(const TVL::CoreElement* owner);
