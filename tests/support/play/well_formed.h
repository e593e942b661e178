#pragma once

#include <set>
#include <string>
#include <vector>

#include "recorder/recorder.h"

namespace play {

// What every row of records keeps to, whatever is called: values that can be read, numbers that
// count on, calls that nest and end, and nothing that is named before it is told.
class WellFormed final : public recorder::Sink {
  public:
    void Take(const recorder::Record& record, std::span<const std::byte> bytes) noexcept override;

    std::vector<std::string> TakeFaults() { return std::exchange(faults_, {}); }
    std::size_t Calls() const { return calls_; }

  private:
    void Follow(const recorder::RecordHead& head);
    void FindUntold(const recorder::Record& record);
    void Name(recorder::ObjectId object);
    void Fail(std::string fault, const recorder::RecordHead& head);

    std::vector<recorder::RecordHead> open_;  // calls; the innermost last
    std::set<recorder::ObjectId> told_;
    std::uint64_t lastNumber_ = 0;
    std::size_t calls_ = 0;
    std::vector<std::string> faults_;
    const recorder::RecordHead* at_ = nullptr;
};

// A recorder with nothing but this behind it.
struct Recorded {
    WellFormed form;
    recorder::Stream stream;
    recorder::Recorder recorder{stream, "the test's own"};
    Recorded() { stream.Add(form); }
};

}  // namespace play
