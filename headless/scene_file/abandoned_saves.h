#pragma once

#include <string>

namespace headless {

// Removes what killed processes left of their saves beside `place`: files under a name of
// AtomicFile's that nobody has written to for a day, since another process may be saving there
// right now, and that stop short of the end of a scene, or are pictures. A scene that is whole
// stays, as it can be the only copy of a take. What cannot be removed, or looked at for want of
// memory, is left to the next save.
void SweepAbandonedSaves(const std::string& place) noexcept;

}  // namespace headless
