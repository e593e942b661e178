#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "interchange/gltf_file.h"

namespace interchange {

// Writes a page that any browser shows, without a server or a network: `viewer`, the text of the
// page without takes (viewer/), with the takes put into it in the form that its README says. The
// result is empty, or says in one line why there is none: the viewer has no place for takes.
std::string WritePage(const std::vector<MovingTake>& takes, const std::string& title,
                      const std::string& viewer, std::ostream& out, const FrameDone& done);

}  // namespace interchange
