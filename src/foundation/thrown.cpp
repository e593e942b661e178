#include "foundation/thrown.h"

#include <exception>

#include "tvl/log.h"

namespace TVL {

// The words for want of memory fit into a string that takes none.
std::string ThrownWords() noexcept try {
    try {
        throw;
    } catch (const std::exception& error) {
        const char* const words = error.what();
        return words ? words : "";
    } catch (...) {
        return "something that is no std::exception";
    }
} catch (...) {
    return "out of memory";
}

void TraceThrown(const char* call, std::string_view words) noexcept {
    try {
        Log(Log::kError).WriteValue("Exception out of " + std::string(call), words);
    } catch (...) {
    }
}

}  // namespace TVL
