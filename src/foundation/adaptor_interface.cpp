#include "tvl/adaptor_interface.h"

namespace TVL {

namespace {

constexpr const char* kImportBegins = "---IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";
constexpr const char* kImportEnds = "---END IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";

// Puts an object of the other side in the place of the instance.
template <class T>
void Place(T* outside) {
    if (T::instance == outside) return;
    if (T::instance && !T::external) T::instance->Destroy();
    T::instance = outside;
    T::external = true;
}

// An instance of our own stays; one of the other side is let go of, and the next use makes one.
template <class T>
void Clear() {
    if (!T::external) return;
    T::instance = nullptr;
    T::external = false;
}

}  // namespace

std::int32_t AdaptorInterface::SetErrorCode(ErrorCode* registry) {
    if (registry) Place(registry);
    return 0;
}

std::int32_t AdaptorInterface::ClearErrorCode() {
    Clear<ErrorCode>();
    return 0;
}

std::int32_t AdaptorInterface::SetLog(Log* log) {
    if (!log) return 0;
    const std::string sofar = Log::GetInstance()->GetBufferedText();
    Place(log);
    log->WriteRaw(kImportBegins);
    log->WriteRaw(sofar);
    log->WriteRaw(kImportEnds);
    return 0;
}

std::int32_t AdaptorInterface::ClearLog() {
    Clear<Log>();
    return 0;
}

}  // namespace TVL
