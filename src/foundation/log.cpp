#include "tvl/log.h"

#include <algorithm>
#include <chrono>
#include <locale>

#include "foundation/log_line.h"

namespace TVL {
namespace {

constexpr std::int32_t kOutermost = -1;

void Append(std::ostream& stream, std::string_view text) {
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string AddressText(const void* address) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << address;
    return text.str();
}

}  // namespace

Log::Log() = default;

Log::Log(std::int32_t objectLevel) : indent(GetInstance()->indent), level(objectLevel) {}

Log::Log(std::string_view message, std::int32_t objectLevel)
    : depthHeld(1), indent(++GetInstance()->indent), level(objectLevel) {
    Log::Write(message, objectLevel);
}

Log::~Log() {
    if (depthHeld != 0) {
        // The log in which the scope was opened may have been replaced by one that never went down.
        std::int32_t& depth = GetInstance()->indent;
        depth = std::max(depth - depthHeld, kOutermost);
    }
    if (file.is_open()) {
        Append(file, "[EOF]\n");
        file.close();
    }
}

std::int32_t Log::Print(std::string_view message, std::int32_t messageLevel) {
    return Write(message, messageLevel);
}

std::int32_t Log::Write(std::string_view message, std::int32_t messageLevel) {
    const std::int32_t lineLevel = messageLevel < 0 ? level : messageLevel;
    if (!IsLevelActive(lineLevel)) return 0;
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    WriteRaw(FormatLogLine(now, lineLevel, indent, message));
    return 0;
}

void Log::WriteRaw(std::string_view text) {
    Log& trace = *GetInstance();
    Append(trace.buffer, text);
    if (trace.file.is_open()) Append(trace.file, text);
}

std::int32_t Log::WriteValue(std::string_view name, std::string_view value,
                             std::int32_t messageLevel) {
    const std::int32_t lineLevel = messageLevel < 0 ? level : messageLevel;
    if (!IsLevelActive(lineLevel)) return 0;
    std::string line(name);
    line += ": ";
    line += value;
    return Write(line, lineLevel);
}

std::int32_t Log::WriteValue(std::string_view name, const char* value, std::int32_t messageLevel) {
    return WriteValue(name, std::string_view(value == nullptr ? "" : value), messageLevel);
}

std::int32_t Log::WriteValue(std::string_view name, std::int32_t value, std::int32_t messageLevel) {
    if (!IsLevelActive(messageLevel < 0 ? level : messageLevel)) return 0;
    return WriteValue(name, std::to_string(value), messageLevel);
}

std::int32_t Log::WriteValue(std::string_view name, const void* value, std::int32_t messageLevel) {
    if (!IsLevelActive(messageLevel < 0 ? level : messageLevel)) return 0;
    return WriteValue(name, AddressText(value), messageLevel);
}

bool Log::IsLevelActive(std::int32_t messageLevel) const {
    return messageLevel <= GetInstance()->level;
}

std::string Log::GetBufferedText() const {
    return GetInstance()->buffer.str();
}

}  // namespace TVL
