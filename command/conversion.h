#pragma once

#include "command/core_stage.h"

namespace headless {

// Presses the Core's button that turns all controllers of its nodes into the host's own. Throws a
// Failure that names the first node on which one is left.
void ConvertControllers(CoreStage& stage);

}  // namespace headless
