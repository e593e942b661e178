#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tvl/singleton.h"

namespace TVL {

// A failure as the site that raises it declares it. The identifier is its stable name.
struct Failure {
    const char* identifier;
    const char* message;
    std::int32_t type;  // an ErrorCode::Type
};

// The one way of reporting failure: a named, numbered code in a registry. An operation that fails
// declares its code on the spot, which writes its message to the log, and returns the code's value;
// 0 is success everywhere. Values are handed out at run time, from 1024 up in the order of first
// use, and mean nothing outside the process. Nothing is thrown.
//
// The same class is the registry (the singleton, or one that the other side placed) and each code
// in it. The registry is also the answer to a lookup that finds nothing: value -1, "NOTFOUND".
// A pointer to a code is valid until the registry next takes a code in: use its value at once.
// The order of virtual operations (Destroy, the destructor, then as below) and of fields is part of
// the contract.
class ErrorCode : public Util::Singleton<ErrorCode> {
  public:
    enum Type : std::int32_t { kCritical, kError, kWarning, kNotice, kSuccess };

    // A registry, which knows one code: value 0, "SUCCESS".
    ErrorCode();

    // A code with the next value of the registry in use, not yet registered.
    ErrorCode(const std::string& codeIdentifier, const std::string& codeMessage,
              std::int32_t codeType);

    // A code with the same four values; what is registered stays behind.
    ErrorCode(const ErrorCode& other);

    virtual std::int32_t GetType() const { return type; }
    virtual std::int32_t GetValue() const { return value; }
    virtual const std::string& GetIdentifier() const { return identifier; }
    virtual const std::string& GetMessage() const { return message; }

    // The code of that identifier, registered now if it is new; a known one keeps its message and
    // type. Logs as GetByIdentifier does.
    virtual ErrorCode* Declare(const std::string& codeIdentifier, const std::string& codeMessage,
                               std::int32_t codeType);

    // The code, or the registry. Logs the message of the result as "Return value".
    virtual ErrorCode* GetByIdentifier(const std::string& codeIdentifier);

    // The code, or the registry; only a miss is logged.
    virtual ErrorCode* GetByValue(std::int32_t codeValue);

    virtual bool HasIdentifier(const std::string& codeIdentifier) const;
    virtual bool HasValue(std::int32_t codeValue) const;

    // Takes a copy of the code in and returns the pointer that was passed; the caller keeps its
    // object. Else returns the code of what is wrong: not a registry, or a value that is taken. An
    // identifier that is taken gives the code that has it, and null the registry.
    virtual ErrorCode* Register(ErrorCode* code);

    // Copies value, identifier, message and type, and nothing else.
    virtual ErrorCode& operator=(const ErrorCode& other);

    virtual bool operator==(const std::int32_t& codeValue) const { return GetValue() == codeValue; }
    virtual bool operator==(const ErrorCode& other) const;  // value and identifier
    virtual operator std::int32_t() const { return GetValue(); }

  private:
    ErrorCode(std::int32_t codeValue, const Failure& text);

    ErrorCode* Registry();

    std::int32_t value;
    std::string identifier;
    std::string message;
    std::int32_t type;
    std::vector<ErrorCode> codes;  // a registry's
    std::int32_t nextValue = 0;    // a registry's: the value of the next new code
    bool isContainer = false;      // true for a registry
};

// Declares the failure in the registry in use and gives its value, as the failing operation's
// result. -1 if a registry of the other side throws instead, or answers with null.
std::int32_t Report(const Failure& failure);

// The value of a code that the registry in use may know, with the same care.
std::int32_t ValueOf(const char* identifier);

}  // namespace TVL
