#include "adaptor/trace_file.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

namespace {

constexpr const char* kTraceVariable = "LUMISET_TRACE";

// Bytes of the log in use that are in the file already.
constinit std::size_t written = 0;

void AppendToFile(std::string_view text) {
    const char* const path = std::getenv(kTraceVariable);
    if (!path || text.empty()) return;
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string TextInUse() {
    return TVL::Log::instance ? TVL::Log::instance->GetBufferedText() : std::string();
}

}  // namespace

void WriteTrace() {
    const std::string text = TextInUse();
    const bool wasEmptied = text.size() < written;  // by a Core whose log it is
    AppendToFile(std::string_view(text).substr(wasEmptied ? 0 : written));
    written = text.size();
}

void RestartTrace() {
    written = 0;
}

TraceHandover::TraceHandover(const TVL::Log* placed) {
    WriteTrace();
    if (placed && placed != TVL::Log::instance) AppendToFile(placed->buffer.str());
}

TraceHandover::~TraceHandover() {
    written = TextInUse().size();
}
