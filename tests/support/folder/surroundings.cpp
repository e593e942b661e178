#include "tests/support/folder/surroundings.h"

#include "platform/narrow_path.h"
#include "platform/registry.h"

namespace {

std::string Entry(std::string_view key, std::string_view name, std::string_view value) {
    std::string text = "\n[";
    text.append(key).append("]\n\"").append(name).append("\"=\"");
    // The file is UTF-8, whatever the code page is.
    for (const char8_t c : platform::FromNarrow(std::string(value)).u8string()) {
        if (c == u8'\\' || c == u8'"') text += '\\';
        text += static_cast<char>(c);
    }
    return text.append("\"\n");
}

}  // namespace

void PlaceRegistry(const TemporaryFolder& folder, const RegistryEntries& entries) {
    std::string text = "Windows Registry Editor Version 5.00\n";
    if (!entries.coreFolder.empty())
        text += Entry("HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools",
                      "datapath", entries.coreFolder);
    if (!entries.documents.empty())
        text += Entry(
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"
            "Shell Folders",
            "Personal", entries.documents);
    platform::UseRegistryFile(folder.Write("test.reg", text));
}
