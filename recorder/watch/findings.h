#pragma once

#include <cstddef>
#include <unordered_map>

#include "recorder/watch/rules.h"
#include "recorder/watch/watch.h"

namespace recorder::watching {

// Where something began: a call.
struct Place {
    std::uint64_t call = 0;
    std::uint32_t milliseconds = 0;
    Operation operation{};
};

// What was found, each kind once. Nothing is put in words before it is new.
class FindingList {
  public:
    // `about` makes the words, when they are needed.
    template <class About>
    void Add(Rule rule, const Place& place, std::string_view node, const About& about) {
        Finding& finding = At(rule, place, node);
        if (finding.count++ == 0) finding.about = about();
    }
    void Add(Rule rule, const Place& place, std::string_view node) {
        ++At(rule, place, node).count;
    }

    const std::vector<Finding>& All() const { return findings_; }

  private:
    // The one of that kind, which is made if need be.
    Finding& At(Rule rule, const Place& place, std::string_view node);

    std::vector<Finding> findings_;
    std::unordered_multimap<std::size_t, std::size_t> places_;  // in there, by a hash
};

}  // namespace recorder::watching
