#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "recorder/stream/record_writer.h"
#include "recorder/stream/turn.h"

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
        const Turn turn(turns_);
        Caller& caller = ThisCaller();
        const std::uint64_t call = Begin(RecordKind::kCall, caller, object, operation, values...);
        ++caller.nesting;
        return call;
    }

    // Tell how the call ended, on its thread.
    template <class... Values>
    void Answer(std::uint64_t call, Operation operation, ObjectId object,
                const Values&... values) noexcept {
        const Turn turn(turns_);
        End(RecordKind::kAnswer, call, object, operation, values...);
    }
    void Thrown(std::uint64_t call, Operation operation, ObjectId object,
                std::string_view words) noexcept {
        const Turn turn(turns_);
        End(RecordKind::kThrown, call, object, operation, words);
    }

    void Know(ObjectId object, const ObjectFacts& facts) noexcept {
        const Turn turn(turns_);
        Begin(RecordKind::kObject, ThisCaller(), object, {}, facts);
    }
    void Note(std::string_view word, std::string_view about) noexcept {
        const Turn turn(turns_);
        Begin(RecordKind::kNote, ThisCaller(), 0, {}, word, about);
    }

    // The mesh's id, behind a record of its content if that is new.
    MeshId Know(const TVL::CMesh& mesh) noexcept;

    // From here on every mesh is new again. Called by a sink, in Take.
    void ForgetMeshes() noexcept { meshes_.clear(); }

    std::uint64_t Lost() const { return lost_; }

  private:
    // Where a thread stands in the session.
    struct Caller {
        std::uintptr_t thread = 0;
        std::uint32_t nesting = 0;
        std::uint8_t number = 0;
    };
    static constexpr std::uint8_t kMost = 255;

    class Turn {
      public:
        explicit Turn(Turns& turns) : turns_(turns) { turns_.Take(); }
        ~Turn() { turns_.Give(); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        Turns& turns_;
    };

    Caller& ThisCaller() noexcept {
        return callers_.front().thread == ThisThread() ? callers_.front() : OtherCaller();
    }
    Caller& OtherCaller() noexcept;

    // A record of the next number, which it gives.
    template <class... Values>
    std::uint64_t Begin(RecordKind kind, const Caller& caller, ObjectId object, Operation operation,
                        const Values&... values) noexcept {
        const std::uint64_t number = ++lastNumber_;
        Tell(number, object, LastWord(Milliseconds(), kind, caller, operation), values...);
        return number;
    }

    // The record of a call's end.
    template <class... Values>
    void End(RecordKind kind, std::uint64_t call, ObjectId object, Operation operation,
             const Values&... values) noexcept {
        Caller& caller = ThisCaller();
        if (caller.nesting > 0) --caller.nesting;
        Tell(call, object, LastWord(0, kind, caller, operation), values...);
    }

    static std::uint64_t LastWord(std::uint32_t milliseconds, RecordKind kind, const Caller& caller,
                                  Operation operation) noexcept {
        const auto nesting =
            static_cast<std::uint8_t>(caller.nesting < kMost ? caller.nesting : kMost);
        return WordOf(milliseconds, kind, caller.number, nesting, operation);
    }

    template <class... Values>
    void Tell(std::uint64_t call, ObjectId object, std::uint64_t lastWord,
              const Values&... values) noexcept try {
        writer_.Begin(call, object, lastWord);
        (writer_.Put(values), ...);
        HandOn();
    } catch (...) {
        ++lost_;
    }
    void HandOn() noexcept;
    std::uint32_t Milliseconds() const noexcept;  // of the session

    Turns turns_;
    RecordWriter writer_;
    std::vector<Sink*> sinks_;
    std::unordered_set<MeshId> meshes_;
    std::vector<Caller> callers_ =
        std::vector<Caller>(1);  // at least that of the session's own thread
    Caller rest_;                // of the threads for which there is no number
    std::uint64_t lastNumber_ = 0;
    std::uint64_t beganAt_ = 0;  // milliseconds
    std::uint64_t lost_ = 0;
};

}  // namespace recorder
