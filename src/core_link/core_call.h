#pragma once

#include <cstdint>
#include <utility>

#include "foundation/thrown.h"

// The one way into the Core: its routines, CoreInterface, owners, node listeners, undo chunks and
// message nodes. Nothing that the Core throws gets past it: the trace names the call and what was
// thrown, and the host goes on. Calls nest, since the Core may call back.

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

// For a call that threw: tells the trace and ends what it left open.
void AfterThrow(const char* name, std::string_view words, const CoreBrackets& before) noexcept;

// False if it threw.
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
