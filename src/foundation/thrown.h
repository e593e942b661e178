#pragma once

#include <optional>
#include <string>
#include <string_view>

// An exception on its way out of somebody else's code ends at the call that met it, and all that is
// left of it is a line in the trace.
namespace TVL {

// The exception that is being handled, in words. To be called inside a handler.
std::string ThrownWords() noexcept;

// "Exception out of <call>: <words>". A trace that cannot take it does without.
void TraceThrown(const char* call, std::string_view words) noexcept;

// What `call` threw, in words; nothing if it returned.
template <class Call>
std::optional<std::string> ThrownBy(Call&& call) noexcept {
    try {
        call();
    } catch (...) {
        return ThrownWords();
    }
    return std::nullopt;
}

// Runs `call` to its end, or traces under that name what it threw. True: it threw nothing.
template <class Call>
bool TraceIfThrown(const char* name, Call&& call) noexcept {
    try {
        call();
        return true;
    } catch (...) {
        TraceThrown(name, ThrownWords());
        return false;
    }
}

}  // namespace TVL
