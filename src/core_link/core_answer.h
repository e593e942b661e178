#pragma once

#include <cstdint>
#include <type_traits>

#include "foundation/thrown.h"
#include "tvl/error_code.h"

// The one way out to the Core: what it calls of the adaptor's runs in here, unless it neither asks
// for memory nor for anything of the host's. Nothing that is thrown in there gets past it: the
// trace names the operation and what was thrown, and the Core is answered as one is for whom there
// is nothing. What was half done is taken back by the operation itself, on the way here.

// How often the Core got such an answer without a status. The end of its undo group tells it.
inline std::uint64_t lostAnswers = 0;

// What `operate` gives; `fallback` if it threw.
template <class Result, class Operate>
Result AnswerCore(const char* operation, Result fallback, Operate&& operate) noexcept {
    try {
        return operate();
    } catch (...) {
        ++lostAnswers;
        TVL::TraceThrown(operation, TVL::ThrownWords());
        return fallback;
    }
}

// With null, false, 0 or nothing to fall back on.
template <class Operate>
std::invoke_result_t<Operate> AnswerCore(const char* operation, Operate&& operate) noexcept {
    using Result = std::invoke_result_t<Operate>;
    if constexpr (std::is_void_v<Result>)
        AnswerCore(operation, true, [&] { return operate(), true; });
    else
        return AnswerCore(operation, Result(), operate);
}

inline constexpr TVL::Failure kThrownOut{
    "ADAPTOR_EXCEPTION", "An exception has ended the operation.", TVL::ErrorCode::kError};

// With a status.
template <class Operate>
std::int32_t AnswerStatus(const char* operation, Operate&& operate) noexcept {
    std::int32_t status = 0;
    const auto thrown = TVL::ThrownBy([&] { status = operate(); });
    if (!thrown) return status;
    TVL::TraceThrown(operation, *thrown);
    return TVL::Report(kThrownOut);
}
