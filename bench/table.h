#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "bench/report.h"

// A number with the three digits that count.
std::string Short(double number);

// The table, then what of it falls short.
void PrintTable(std::ostream& out, const std::vector<Row>& rows);

// The targets for which nothing was measured.
void PrintUnmeasured(std::ostream& out, const std::vector<Row>& rows);

// The rows for other programs: an array with an object for each.
std::string ToJson(const std::vector<Row>& rows);
