#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

// What a person reads who asks for help, in lines of 80 columns at most.
namespace headless {

// Has the parser print our help for the program and, since verbs take it over, for each verb that
// is added afterwards.
void UseOwnHelp(CLI::App& program);

// The page of the manual, for `man`.
void PrintManual(std::ostream& out, const CLI::App& program);

// What has bash complete the command's words. It is to be sourced.
void PrintCompletion(std::ostream& out, const CLI::App& program);

}  // namespace headless
