#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"

namespace platform {

// The bytes as they are handed out: texts as UTF-8 with their NUL, numbers little-endian.
struct RegValue {
    DWORD type = REG_SZ;
    std::string bytes;
};

// By name in lower case; the default value has the empty name.
using RegKey = std::map<std::string, RegValue>;

// The content of a .reg file ("Windows Registry Editor Version 5.00"): what the registry holds
// after its lines were applied, in order, to an empty one.
struct RegFile {
    std::map<std::string, RegKey> keys;  // by path in lower case, its root first
    std::vector<int> damagedLines;       // numbered from 1; they were skipped

    // A key is there if it has a line, or a key below it has.
    bool HasKey(const std::string& path) const;
    const RegValue* FindValue(const std::string& path, const std::string& name) const;
};

// Takes the bytes of the file: UTF-8, or UTF-16 in little-endian order if a byte-order mark says
// so.
RegFile ParseRegFile(std::string_view bytes);

// Lines to the standard error stream: one for each that is damaged, and one for a file that
// somebody named and that cannot be read.
void ReportUnreadable(const std::string& path);
void ReportDamage(const std::string& path, const RegFile& file);

}  // namespace platform
