#include "recorder/tape/slots.h"

#include <algorithm>
#include <tuple>

namespace recorder {

void Slots::Put(std::size_t place, std::uint64_t number, std::uint64_t session) {
    if (place >= slots_.size()) slots_.resize(place + 1);
    slots_[place] = {number, session, session};
}

void Slots::SessionBegan(std::size_t place, std::uint64_t session) {
    slots_[place].lastSession = session;
}

bool Slots::IsSaved(const Slot& slot) const {
    for (std::uint64_t session = slot.firstSession; session <= slot.lastSession; ++session) {
        const auto save = saves_.find(session);
        if (save == saves_.end() || save->second < slot.number) return false;
    }
    return true;
}

std::size_t Slots::Next(std::size_t most) const {
    const auto place = [this](auto slot) {
        return static_cast<std::size_t>(slot - slots_.begin());
    };
    const auto free = std::ranges::find(slots_, std::uint64_t{0}, &Slot::number);
    if (free != slots_.end() || slots_.size() < most) return place(free);
    return place(std::ranges::min_element(
        slots_, {}, [this](const Slot& slot) { return std::tuple(!IsSaved(slot), slot.number); }));
}

}  // namespace recorder
