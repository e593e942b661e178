#include "tvl/log.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <locale>

#include "foundation/thrown.h"

namespace TVL {
namespace {

constexpr std::int32_t kOutermost = -1;
constexpr std::array<std::string_view, 4> kLevelWords = {
    "CRITICAL): ", "ERROR): ", "WARNING): ", "NOTICE): "};

// Nothing that is logged may fail for its sake, in a destructor least of all: what memory does not
// suffice for is missing from the trace.
template <class Act>
void IfItCan(Act act) {
    static_cast<void>(ThrownBy(act));
}

// A stream that could not take a text is asked again for the next. One of the other side's may be
// set to throw.
void Append(std::ostream& stream, std::string_view text) {
    IfItCan([&] { stream.write(text.data(), static_cast<std::streamsize>(text.size())); });
    IfItCan([&] { stream.clear(); });
}

// Date and time of this moment in UTC, and what follows them.
std::string LineStart() {
    const std::time_t now = std::time(nullptr);
    std::array<char, sizeof "20061204 09:05:00 ("> text{};
    return {text.data(),
            std::strftime(text.data(), text.size(), "%Y%m%d %H:%M:%S (", std::gmtime(&now))};
}

std::string AddressText(const void* address) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << address;
    return text.str();
}

// The singleton; null if it had to be made and there is no memory for it. The first line spares
// what a call that can throw costs.
Log* Trace() noexcept {
    if (Log::instance != nullptr) return Log::instance;
    Log* trace = nullptr;
    IfItCan([&] { trace = Log::GetInstance(); });
    return trace;
}

// The depth that comes of going deeper, or, below 0, back. The log in which a scope was opened may
// have been replaced by one that never went down.
std::int32_t Deepen(std::int32_t by) noexcept {
    Log* const trace = Trace();
    if (!trace) return kOutermost;
    if (by != 0) trace->indent = std::max(trace->indent + by, kOutermost);
    return trace->indent;
}

}  // namespace

Log::Log() {
    // To look at a stream makes it.
    static_cast<void>(*file);
    static_cast<void>(*buffer);
}

Log::Log(std::int32_t objectLevel) : indent(Deepen(0)), level(objectLevel) {}

Log::Log(std::string_view message, std::int32_t objectLevel)
    : depthHeld(1), indent(Deepen(1)), level(objectLevel) {
    Log::Write(message, objectLevel);
}

Log::~Log() {
    if (depthHeld != 0) Deepen(-depthHeld);
    if (file.is_open()) {
        Append(*file, "[EOF]\n");
        IfItCan([&] { file.close(); });
    }
}

std::int32_t Log::Print(std::string_view message, std::int32_t messageLevel) {
    return Write(message, messageLevel);
}

std::int32_t Log::Write(std::string_view message, std::int32_t messageLevel) {
    const std::int32_t lineLevel = messageLevel < 0 ? level : messageLevel;
    if (!IsLevelActive(lineLevel)) return 0;
    IfItCan([&] {
        std::string line = LineStart();
        const auto word = static_cast<std::size_t>(lineLevel);
        if (word < kLevelWords.size()) line += kLevelWords[word];
        if (indent >= 0) line.append(static_cast<std::size_t>(indent) + 1, '\t');
        WriteRaw(line.append(message) += '\n');
    });
    return 0;
}

void Log::WriteRaw(std::string_view text) {
    Log* const trace = Trace();
    if (!trace) return;
    IfItCan([&] {
        Append(*trace->buffer, text);
        if (trace->file.is_open()) Append(*trace->file, text);
    });
}

std::int32_t Log::WriteValue(std::string_view name, std::string_view value,
                             std::int32_t messageLevel) {
    const std::int32_t lineLevel = messageLevel < 0 ? level : messageLevel;
    if (!IsLevelActive(lineLevel)) return 0;
    IfItCan([&] { Write(std::string(name).append(": ").append(value), lineLevel); });
    return 0;
}

std::int32_t Log::WriteValue(std::string_view name, const char* value, std::int32_t messageLevel) {
    return WriteValue(name, std::string_view(value == nullptr ? "" : value), messageLevel);
}

std::int32_t Log::WriteValue(std::string_view name, std::int32_t value, std::int32_t messageLevel) {
    if (!IsLevelActive(messageLevel < 0 ? level : messageLevel)) return 0;
    IfItCan([&] { WriteValue(name, std::to_string(value), messageLevel); });
    return 0;
}

std::int32_t Log::WriteValue(std::string_view name, const void* value, std::int32_t messageLevel) {
    if (!IsLevelActive(messageLevel < 0 ? level : messageLevel)) return 0;
    IfItCan([&] { WriteValue(name, AddressText(value), messageLevel); });
    return 0;
}

bool Log::IsLevelActive(std::int32_t messageLevel) const {
    const Log* const trace = Trace();
    return trace && messageLevel <= trace->level;
}

std::string Log::GetBufferedText() const {
    return GetInstance()->buffer.str();
}

}  // namespace TVL
