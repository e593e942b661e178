#include "core_link/trace_file.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/thrown.h"
#include "platform/process.h"
#include "tvl/installation.h"

namespace {

// Bytes of the log in use that are in the file already.
constinit std::size_t written = 0;

// Whoever wants a trace is told once that there will be none; the trace itself cannot tell.
void Complain(const std::string& path) {
    constinit static bool hasComplained = false;
    if (std::exchange(hasComplained, true)) return;
    std::fprintf(stderr, "%s: %s: the trace cannot be written\n", TVL::kTraceVariable,
                 path.c_str());
}

void AppendToFile(std::string_view text) {
    const std::string path = platform::Variable(TVL::kTraceVariable);
    if (path.empty() || text.empty()) return;
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) Complain(path);
}

std::string_view TextInUse() {
    return TVL::Log::instance ? TVL::Log::instance->buffer.view() : std::string_view();
}

}  // namespace

// What memory does not suffice for now waits for the next time.
void WriteTrace() noexcept {
    const std::string_view text = TextInUse();
    if (text.size() == written) return;
    const bool wasEmptied = text.size() < written;  // by a Core whose log it is
    if (!TVL::ThrownBy([&] { AppendToFile(text.substr(wasEmptied ? 0 : written)); }))
        written = text.size();
}

void EndTrace() noexcept {
    if (!TVL::Log::external) WriteTrace();
}

void RestartTrace() {
    written = 0;
}

TraceHandover::TraceHandover(const TVL::Log* placed) {
    WriteTrace();
    if (placed && placed != TVL::Log::instance) AppendToFile(placed->buffer.view());
}

TraceHandover::~TraceHandover() {
    written = TextInUse().size();
}
