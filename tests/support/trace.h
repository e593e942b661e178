#pragma once

#include <algorithm>
#include <sstream>
#include <vector>

#include "tvl/log.h"

// What stands in the trace.

inline std::string Trace() {
    return TVL::Log::GetInstance()->GetBufferedText();
}

inline std::size_t TimesTraced(const std::string& text) {
    const std::string trace = Trace();
    std::size_t count = 0;
    for (auto at = trace.find(text); at != std::string::npos; at = trace.find(text, at + 1))
        ++count;
    return count;
}

// Its lines from a byte on, each without the moment at its front.
inline std::vector<std::string> TracedLines(std::size_t from = 0) {
    constexpr std::size_t kMoment = sizeof("20061204 09:05:00 ") - 1;
    std::istringstream text(Trace().substr(from));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line.substr(std::min(kMoment, line.size())));
    return lines;
}

// A trace without what is another at each run: moments, addresses, and the name of a folder.
inline std::string PlainTrace(const std::string& trace, const std::string& folder) {
    constexpr std::size_t kMoment = sizeof("20061204 09:05:00") - 1;
    std::istringstream text(trace);
    std::string plain;
    for (std::string line; std::getline(text, line);) {
        if (const auto at = line.find(folder); at != line.npos) line.erase(at, folder.size());
        if (const auto at = line.find("0x"); at != line.npos)
            line.erase(at, line.find_first_not_of("0123456789abcdefx", at) - at);
        plain.append(line, std::min(kMoment, line.size())).append("\n");
    }
    return plain;
}
