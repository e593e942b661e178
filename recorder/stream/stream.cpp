#include "recorder/stream/stream.h"

#include <algorithm>
#include <chrono>
#include <thread>

#if !defined(_WIN32)
#include <ctime>
#endif

namespace recorder {
namespace {

// A clock that costs next to nothing to read; it moves by a few milliseconds at a time.
std::uint64_t Milliseconds() {
#if defined(_WIN32)
    using std::chrono::duration_cast;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(duration_cast<std::chrono::milliseconds>(now).count());
#else
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
#endif
}

// Where this thread stands in the session that it called last.
struct ThreadState {
    std::uint64_t session = 0;
    std::uint32_t nesting = 0;
    std::uint8_t number = 0;
};
thread_local ThreadState here;

std::atomic<std::uint64_t> sessions{0};

constexpr std::uint8_t kMost = 255;

}  // namespace

void Stream::Turn::Wait() {
    std::this_thread::yield();
}

void Stream::BeginSession(const SessionFacts& facts) noexcept {
    const Turn turn(isTaken_);
    session_ = ++sessions;
    lastNumber_ = 0;
    threads_ = 0;
    beganAt_ = Milliseconds();
    meshes_.clear();
    Tell(HeadOf(RecordKind::kSession, 0, {}), facts.moment, facts.interface, facts.platform,
         facts.core, facts.by);
}

RecordHead Stream::HeadOf(RecordKind kind, ObjectId object, Operation operation) noexcept {
    if (here.session != session_) {
        here = {session_, 0, threads_};
        if (threads_ < kMost) ++threads_;
    }
    RecordHead head;
    head.call = ++lastNumber_;
    head.object = object;
    head.milliseconds = static_cast<std::uint32_t>(Milliseconds() - beganAt_);
    head.kind = kind;
    head.thread = here.number;
    head.nesting = static_cast<std::uint8_t>(std::min<std::uint32_t>(here.nesting, kMost));
    head.operation = operation;
    return head;
}

RecordHead Stream::EndOf(RecordKind kind, std::uint64_t call, ObjectId object,
                         Operation operation) noexcept {
    if (here.session == session_ && here.nesting > 0) --here.nesting;
    RecordHead head;
    head.call = call;
    head.object = object;
    head.kind = kind;
    head.thread = here.number;
    head.nesting = static_cast<std::uint8_t>(std::min<std::uint32_t>(here.nesting, kMost));
    head.operation = operation;
    return head;
}

void Stream::Enter() noexcept {
    ++here.nesting;
}

MeshId Stream::Know(const TVL::CMesh& mesh) noexcept {
    const MeshId id = IdOf(mesh);
    const Turn turn(isTaken_);
    try {
        if (!meshes_.insert(id).second) return id;
        writer_.Begin(HeadOf(RecordKind::kMesh, 0, {}));
        writer_.PutMeshContent(id, mesh);
        HandOn();
    } catch (...) {
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
