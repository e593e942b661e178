#pragma once

#include <string>
#include <vector>

// The bitmap search path of the running session, which plug-ins add to by host/path_config.h. This
// host shows no bitmaps, so nothing is ever looked for there.
namespace headless {

const std::vector<std::string>& SessionMapDirectories();

void ForgetMapDirectories();

}  // namespace headless
