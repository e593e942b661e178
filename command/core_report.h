#pragma once

#include <optional>
#include <string>

#include "replay/report.h"

namespace headless {

// What a Core wrote into its report file. A field that it left out is empty or 0. Nothing if the
// file is absent or empty. Throws a Failure if it cannot be read to its end.
std::optional<replay::Report> ReadReport(const std::string& path);

}  // namespace headless
