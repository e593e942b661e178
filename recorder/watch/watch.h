#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "recorder/stream/stream.h"

namespace recorder {

// What the contract asks of a Core, and how it is told that it was not kept.
struct WatchRule {
    std::string_view name;  // as "use-after-release"
    std::string_view text;  // what is wrong, in one line
};
std::span<const WatchRule> WatchRules();

// A rule that was broken, on one node by one operation.
struct Finding {
    std::string_view rule;
    Operation operation{};    // that broke it; of what was left, that which began it
    std::string node;         // its name, or what else the call was on; can be empty
    std::string about;        // what exactly, where the rule leaves that open
    std::uint64_t count = 0;  // how often
    std::uint64_t firstCall = 0;
    std::uint32_t firstMilliseconds = 0;
};

// Holds calls against the contract, as they are made or as a tape has them. Where records are
// missing, or there is no memory, it says nothing more of the session: it is blind, and never
// wrong.
class Watch final : public Sink {
  public:
    Watch();
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    void Take(const Record& record, std::span<const std::byte> bytes) noexcept override;

    // In the order in which they were found. What is only known at the end is found when the
    // session has ended.
    const std::vector<Finding>& Findings() const;

    // No session was cut short by missing records or memory.
    bool HasSeenAll() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// "use-after-release: SetWorldTransform on Hand, 12 times, first at 2.310 s (call 482): ..."
std::string Line(const Finding& finding);

// A line for each under a line of headings, each with its end: rule, call, node, how often, where
// it began. Empty for no findings.
std::string Table(std::span<const Finding> findings);

}  // namespace recorder
