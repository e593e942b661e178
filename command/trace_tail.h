#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command/written_files.h"

// What the plug-in adds to its trace while it runs.
namespace headless {

// A line of the trace, without the moment at which it was written.
struct TraceLine {
    int level = 0;          // of TVL::Log
    std::size_t depth = 0;  // 0 outside all scopes, 1 for the outermost
    std::string text;
};

// As a program reads it: "WARNING: " and the text, behind two blanks for each scope around it.
std::string ToText(const TraceLine& line);

// What somebody has to be told of, a text each: the warnings and what is worse, each with what is
// nested below it in brackets, as in "CORE left something behind in the adaptor (nodes: 2)".
std::vector<std::string> Worries(const std::vector<TraceLine>& lines);

// Reads the trace while it grows. The plug-in writes it to a file that goes with this object,
// unless the environment names one already.
class TraceTail {
  public:
    TraceTail();
    ~TraceTail();
    TraceTail(const TraceTail&) = delete;
    TraceTail& operator=(const TraceTail&) = delete;

    // What came since the last time, or a line that tells why that cannot be read. Nothing of a
    // trace that goes to no plain file.
    std::vector<TraceLine> TakeNew();

  private:
    std::optional<std::string> NewText();

    std::optional<CoreFile> own_;
    std::string path_;
    std::uintmax_t read_ = 0;  // bytes
};

}  // namespace headless
