#include "tvl/error_code.h"

#include <algorithm>

#include "foundation/thrown.h"
#include "tvl/log.h"

namespace TVL {
namespace {

constexpr Failure kNotFound = {"NOTFOUND", "(Error code not found)", ErrorCode::kError};
constexpr Failure kSuccessCode = {"SUCCESS", "The function returned successfully",
                                  ErrorCode::kSuccess};
constexpr Failure kNonContainer = {
    "ERRORCODE_NONCONTAINER", "Trying to register a code to a non-container", ErrorCode::kError};
constexpr Failure kNonUniqueValue = {"ERRORCODE_NONUNIQUEVALUE",
                                     "Trying to register a code with a non-unique value",
                                     ErrorCode::kError};

constexpr std::int32_t kNotFoundValue = -1;
constexpr std::int32_t kSuccessValue = 0;
constexpr std::int32_t kFirstValue = 1024;

ErrorCode* DeclareIn(ErrorCode& registry, const Failure& failure) {
    return registry.Declare(failure.identifier, failure.message, failure.type);
}

// The registry can be one of the other side's, whose every operation runs code from there.
template <class Ask>
std::int32_t ValueFrom(const char* call, Ask ask) {
    std::int32_t value = kNotFoundValue;
    TraceIfThrown(call, [&] {
        if (const ErrorCode* const code = ask()) value = *code;
    });
    return value;
}

}  // namespace

ErrorCode::ErrorCode() : ErrorCode(kNotFoundValue, kNotFound) {
    nextValue = kFirstValue;
    isContainer = true;
    codes.push_back(ErrorCode(kSuccessValue, kSuccessCode));
}

ErrorCode::ErrorCode(const std::string& codeIdentifier, const std::string& codeMessage,
                     std::int32_t codeType)
    : value(GetInstance()->nextValue++),
      identifier(codeIdentifier),
      message(codeMessage),
      type(codeType) {}

ErrorCode::ErrorCode(const ErrorCode& other)
    : Singleton(other),
      value(other.value),
      identifier(other.identifier),
      message(other.message),
      type(other.type) {}

ErrorCode::ErrorCode(std::int32_t codeValue, const Failure& text)
    : value(codeValue), identifier(text.identifier), message(text.message), type(text.type) {}

ErrorCode* ErrorCode::Declare(const std::string& codeIdentifier, const std::string& codeMessage,
                              std::int32_t codeType) {
    if (!HasIdentifier(codeIdentifier)) {
        ErrorCode code(codeIdentifier, codeMessage, codeType);
        Register(&code);
    }
    return GetByIdentifier(codeIdentifier);
}

ErrorCode* ErrorCode::GetByIdentifier(const std::string& codeIdentifier) {
    const auto found = std::ranges::find(codes, codeIdentifier, &ErrorCode::identifier);
    ErrorCode* const result = found != codes.end() ? &*found : Registry();
    const bool isMild = result->type == kWarning || result->type == kNotice;
    Log(isMild ? Log::kWarning : Log::kError).WriteValue("Return value", result->message);
    return result;
}

ErrorCode* ErrorCode::GetByValue(std::int32_t codeValue) {
    const auto found = std::ranges::find(codes, codeValue, &ErrorCode::value);
    if (found != codes.end()) return &*found;
    Log(Log::kWarning).WriteValue("Errorcode not found. value", codeValue);
    return Registry();
}

bool ErrorCode::HasIdentifier(const std::string& codeIdentifier) const {
    return std::ranges::find(codes, codeIdentifier, &ErrorCode::identifier) != codes.end();
}

bool ErrorCode::HasValue(std::int32_t codeValue) const {
    return std::ranges::find(codes, codeValue, &ErrorCode::value) != codes.end();
}

ErrorCode* ErrorCode::Register(ErrorCode* code) {
    if (code == nullptr) return Registry();
    Log scope("Register Code", Log::kNotice);
    scope.WriteValue("new_value", code->value);
    scope.WriteValue("new_identifier", code->identifier);
    scope.WriteValue("new_message", code->message);
    scope.WriteValue("new_type", code->type);
    if (!isContainer) {
        scope.WriteValue("Error: Trying to register error code to a non-container", code->message,
                         Log::kError);
        return DeclareIn(*GetInstance(), kNonContainer);
    }
    if (HasValue(code->value)) {
        scope.WriteValue("Error: Trying to register error code with a non-unique value",
                         code->value, Log::kError);
        return DeclareIn(*this, kNonUniqueValue);
    }
    if (HasIdentifier(code->identifier)) {
        scope.WriteValue("Error: Trying to register error code with a non-unique identifier",
                         code->identifier, Log::kError);
        return GetByIdentifier(code->identifier);
    }
    codes.push_back(*code);
    return code;
}

ErrorCode& ErrorCode::operator=(const ErrorCode& other) {
    value = other.value;
    identifier = other.identifier;
    message = other.message;
    type = other.type;
    return *this;
}

bool ErrorCode::operator==(const ErrorCode& other) const {
    return value == other.value && identifier == other.identifier;
}

// A plain code that is asked to look something up answers as the registry in use does.
ErrorCode* ErrorCode::Registry() {
    return isContainer ? this : GetInstance();
}

std::int32_t Report(const Failure& failure) {
    return ValueFrom("Declare", [&] { return DeclareIn(*ErrorCode::GetInstance(), failure); });
}

std::int32_t ValueOf(const char* identifier) {
    return ValueFrom("GetByIdentifier",
                     [&] { return ErrorCode::GetInstance()->GetByIdentifier(identifier); });
}

}  // namespace TVL
