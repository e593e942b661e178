#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "recorder/stream/record_writer.h"

namespace recorder {

class Stream;

// Who takes records in, in their order and on whatever thread they come. Nothing is thrown: what
// cannot be taken is the sink's own affair. A sink does not call the stream, but for ForgetMeshes.
class Sink {
  public:
    // Once, when it is added. The stream outlives what the sink does with it.
    virtual void Join(Stream&) noexcept {}

    virtual void Take(const Record& record, std::span<const std::byte> bytes) noexcept = 0;

  protected:
    ~Sink() = default;
};

// What a session is told to begin with.
struct SessionFacts {
    std::string_view moment{};    // UTC, as "2026-11-26 04:05:00"
    std::int32_t interface = 0;   // the version that this side was built with
    std::string_view platform{};  // "Linux" or "Windows": where the records are made
    std::string_view core{};      // the Core's library
    std::string_view by{};        // what made the records, with its version
};

// Makes records of what crosses the boundary, and hands each to the sinks before anything else
// happens. Any thread may call; a record is whole before the next one begins. Nothing is thrown:
// what there is no memory for is told to nobody, and counted.
class Stream {
  public:
    // Before the session. The sink is not owned.
    void Add(Sink& sink) {
        sinks_.push_back(&sink);
        sink.Join(*this);
    }

    // On the thread of the session, from which times and numbers count anew.
    void BeginSession(const SessionFacts& facts) noexcept;

    // Tells of a call and gives its number. Values are those that RecordWriter::Put takes, in the
    // order of the operation's row.
    template <class... Values>
    std::uint64_t Call(Operation operation, ObjectId object, const Values&... values) noexcept {
        const Turn turn(isTaken_);
        const RecordHead head = HeadOf(RecordKind::kCall, object, operation);
        Tell(head, values...);
        Enter();
        return head.call;
    }

    // Tell how the call ended, on its thread.
    template <class... Values>
    void Answer(std::uint64_t call, Operation operation, ObjectId object,
                const Values&... values) noexcept {
        const Turn turn(isTaken_);
        Tell(EndOf(RecordKind::kAnswer, call, object, operation), values...);
    }
    void Thrown(std::uint64_t call, Operation operation, ObjectId object,
                std::string_view words) noexcept {
        const Turn turn(isTaken_);
        Tell(EndOf(RecordKind::kThrown, call, object, operation), words);
    }

    void Know(ObjectId object, const ObjectFacts& facts) noexcept {
        const Turn turn(isTaken_);
        Tell(HeadOf(RecordKind::kObject, object, {}), facts);
    }
    void Note(std::string_view word, std::string_view about) noexcept {
        const Turn turn(isTaken_);
        Tell(HeadOf(RecordKind::kNote, 0, {}), word, about);
    }

    // The mesh's id, behind a record of its content if that is new.
    MeshId Know(const TVL::CMesh& mesh) noexcept;

    // From here on every mesh is new again. Called by a sink, in Take.
    void ForgetMeshes() noexcept { meshes_.clear(); }

    std::uint64_t Lost() const { return lost_; }

  private:
    // Of one thread at a time. It is short, and seldom contended.
    class Turn {
      public:
        explicit Turn(std::atomic_flag& isTaken) : isTaken_(isTaken) {
            while (isTaken_.test_and_set(std::memory_order_acquire))
                Wait();
        }
        ~Turn() { isTaken_.clear(std::memory_order_release); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        static void Wait();
        std::atomic_flag& isTaken_;
    };

    template <class... Values>
    void Tell(const RecordHead& head, const Values&... values) noexcept try {
        writer_.Begin(head);
        (writer_.Put(values), ...);
        HandOn();
    } catch (...) {
        ++lost_;
    }
    void HandOn() noexcept;

    // With the next number, the time, and where this thread stands.
    RecordHead HeadOf(RecordKind kind, ObjectId object, Operation operation) noexcept;
    RecordHead EndOf(RecordKind kind, std::uint64_t call, ObjectId object,
                     Operation operation) noexcept;  // leaves the call
    void Enter() noexcept;

    std::atomic_flag isTaken_;
    RecordWriter writer_;
    std::vector<Sink*> sinks_;
    std::unordered_set<MeshId> meshes_;
    std::uint64_t session_ = 0;  // no other stream, and no session before, has it
    std::uint64_t lastNumber_ = 0;
    std::uint64_t beganAt_ = 0;  // milliseconds
    std::uint8_t threads_ = 0;   // that have called so far
    std::uint64_t lost_ = 0;
};

}  // namespace recorder
