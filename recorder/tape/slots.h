#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "recorder/tape/segments.h"

namespace recorder {

// Which segment lies at which place of a tape's file, and which is to make room for another one.
class Slots {
  public:
    void Put(std::size_t place, std::uint64_t number, std::uint64_t session);
    void SessionBegan(std::size_t place, std::uint64_t session);  // within the segment there
    void Clear(std::size_t place) { Put(place, 0, 0); }
    void Copy(std::size_t from, std::size_t place);

    // What the session has done up to the segment of that number is in a scene.
    void Saved(std::uint64_t session, std::uint64_t number) { saves_[session] = number; }

    // Where a segment is to be copied in a file with so many places: one that is free, else that of
    // the oldest segment all of whose work was saved, else that of the oldest.
    std::size_t PlaceForCopy(std::size_t most) const;

    // Of the copy of the segment there; if there is none, where one is to be made.
    std::size_t PlaceOfCopy(std::size_t from, std::size_t most) const;

    std::uint64_t NumberAt(std::size_t place) const { return slots_[place].number; }

    std::size_t Count() const { return slots_.size(); }

  private:
    struct Slot {
        std::uint64_t number = 0;  // 0 if it is free
        std::uint64_t firstSession = 0;
        std::uint64_t lastSession = 0;
    };
    bool IsSaved(const Slot& slot) const;

    std::vector<Slot> slots_ = std::vector<Slot>(kDesks);
    std::unordered_map<std::uint64_t, std::uint64_t> saves_;  // number of a session's last segment
};

}  // namespace recorder
