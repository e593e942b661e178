#pragma once

#include <span>

#include "host/class_desc.h"

// Describes the classes that the host itself provides.
namespace headless {

std::span<ClassDesc* const> OwnDescriptors();

}  // namespace headless
