#include "objects/own_classes.h"

namespace headless {
__attribute__((weak)) Control* NewPositionRotationScale() { return nullptr; }
__attribute__((weak)) Control* NewLinearFloat() { return nullptr; }
}  // namespace headless
