#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "recorder/stream/stream.h"

namespace recorder {

inline constexpr std::uint64_t kUsualTapeLimit = std::uint64_t{1} << 30;
inline constexpr std::uint64_t kLeastTapeLimit = std::uint64_t{8} << 20;

struct TapeSettings {
    std::string path;
    std::uint64_t limit = kUsualTapeLimit;  // bytes that the file grows to, at least the least
};

// A file that takes all records in, so that the death of this process loses none of them but one
// that was just being written, and the loss of power none that came before the end of the last
// outermost undo group. See docs/tape.md for the form.
//
// A tape that is there already is gone on with, behind what it holds: nothing on it is lost but
// what the limit takes, the oldest first, and of that first what was saved in a scene. What fails
// ends the tape and nothing else; it stays readable up to there.
class TapeWriter final : public Sink {
  public:
    // Null if the file cannot be had, is another's, no tape, or in use; `whyNot` says so in one
    // line.
    static std::unique_ptr<TapeWriter> Open(const TapeSettings& settings, std::string& whyNot);
    ~TapeWriter();  // closes the tape: what was set aside for more is given back
    TapeWriter(const TapeWriter&) = delete;
    TapeWriter& operator=(const TapeWriter&) = delete;

    void Join(Stream& stream) noexcept override;
    void Take(const Record& record, std::span<const std::byte> bytes) noexcept override;

    // Tells of every object that is alive. Asked for at the beginning of a segment but that of a
    // session, so that a segment can be read alone, as long as that takes no more than an eighth of
    // the tape; it calls nothing that makes records.
    using TellObject = std::function<void(ObjectId, const ObjectFacts&)>;
    std::function<void(const TellObject&)> onNewSegment;

    // Why no more is taken in, in one line; empty while all is well.
    std::string WhyStopped() const;

  private:
    struct State;
    explicit TapeWriter(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace recorder
