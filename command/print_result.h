#pragma once

#include <iosfwd>

#include "command/record.h"

namespace headless {

void PrintForPerson(std::ostream& out, const RecordResult& result);

// One JSON object.
void PrintForProgram(std::ostream& out, const RecordResult& result);

}  // namespace headless
