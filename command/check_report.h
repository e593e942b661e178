#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "command/checks/checks.h"
#include "command/written_files.h"

namespace headless {

// What came of a Core's checks.
struct CheckReport {
    std::string core;
    std::vector<CheckOutcome> outcomes;

    std::size_t Count(Verdict verdict) const;
};

// A row of those that a person sees while checks are made, with what helps where one failed.
void PrintOutcome(std::ostream& out, const CheckOutcome& outcome);

void PrintForPerson(std::ostream& out, const CheckReport& report);
void PrintForProgram(std::ostream& out, const CheckReport& report);

// In the form of JUnit, which servers that build and test read; whole or not at all.
void WriteJunit(const CheckReport& report, CoreFile& file);

}  // namespace headless
