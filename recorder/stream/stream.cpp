#include "recorder/stream/stream.h"

#include <algorithm>

#if defined(_WIN32)
#include "platform/win32.h"
#else
#include <ctime>
#endif

namespace recorder {
namespace {

// A clock that costs next to nothing to read; it moves by some milliseconds at a time.
std::uint64_t MillisecondsNow() {
#if defined(_WIN32)
    return GetTickCount64();
#else
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
#endif
}

}  // namespace

void Stream::BeginSession(const SessionFacts& facts) noexcept {
    turns_.Favour();
    const Turn turn(turns_);
    lastNumber_ = 0;
    callers_.resize(1);
    callers_.front() = {.thread = ThisThread()};
    rest_ = {.number = kMost};
    beganAt_ = MillisecondsNow();
    meshes_.clear();
    Begin(RecordKind::kSession, callers_.front(), 0, {}, facts.moment, facts.interface,
          facts.platform, facts.core, facts.by);
}

Stream::Caller& Stream::OtherCaller() noexcept {
    const std::uintptr_t thread = ThisThread();
    const auto known = std::ranges::find(callers_, thread, &Caller::thread);
    if (known != callers_.end()) return *known;
    if (callers_.size() == kMost) return rest_;
    try {
        return callers_.emplace_back(
            Caller{.thread = thread, .number = static_cast<std::uint8_t>(callers_.size())});
    } catch (...) {
        return rest_;
    }
}

std::uint32_t Stream::Milliseconds() const noexcept {
    return static_cast<std::uint32_t>(MillisecondsNow() - beganAt_);
}

MeshId Stream::Know(const TVL::CMesh& mesh) noexcept {
    const MeshId id = IdOf(mesh);
    const Turn turn(turns_);
    try {
        if (!meshes_.insert(id).second) return id;
        writer_.Begin(++lastNumber_, 0,
                      LastWord(Milliseconds(), RecordKind::kMesh, ThisCaller(), {}));
        writer_.PutMeshContent(id, mesh);
        HandOn();
    } catch (...) {
        meshes_.erase(id);
        ++lost_;
    }
    return id;
}

// A record of a size that no head can tell is lost.
void Stream::HandOn() noexcept {
    if (writer_.Bytes().size() > kLargestRecord) {
        ++lost_;
        return;
    }
    const Record record = writer_.End();
    for (Sink* const sink : sinks_)
        sink->Take(record, writer_.Bytes());
}

}  // namespace recorder
