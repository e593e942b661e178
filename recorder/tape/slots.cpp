#include "recorder/tape/slots.h"

#include <algorithm>
#include <span>
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

void Slots::Copy(std::size_t from, std::size_t place) {
    Clear(place);
    slots_[place] = slots_[from];
}

std::size_t Slots::PlaceForCopy(std::size_t most) const {
    const auto others = std::span(slots_).subspan(kDesks);
    const auto place = [&](auto slot) {
        return static_cast<std::size_t>(slot - others.begin()) + kDesks;
    };
    const auto free = std::ranges::find(others, std::uint64_t{0}, &Slot::number);
    if (free != others.end() || slots_.size() < most) return place(free);
    return place(std::ranges::min_element(
        others, {}, [this](const Slot& slot) { return std::tuple(!IsSaved(slot), slot.number); }));
}

std::size_t Slots::PlaceOfCopy(std::size_t from, std::size_t most) const {
    for (std::size_t place = kDesks; place < slots_.size(); ++place)
        if (slots_[place].number == slots_[from].number) return place;
    return PlaceForCopy(most);
}

}  // namespace recorder
