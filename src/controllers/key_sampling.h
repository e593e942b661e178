#pragma once

#include <vector>

#include "host/control.h"

// The times, rising, at which a table that copies `source` samples it: every frame from the first
// to the last key of the controller and of its direct parts; none without keys. A range of more
// than a million frames, as one stray key can make it, is sampled at the keys themselves.
std::vector<TimeValue> SamplingTimes(Control& source);
