#pragma once

#include <string_view>

#include "tests/support/folder/temporary_folder.h"

// What the registry says; what is empty it does not know.
struct RegistryEntries {
    std::string_view coreFolder;  // where a Core is installed
    std::string_view documents;   // the user's folder of documents
};

// Lets this process and those that it starts find this in the registry, and nothing else. The file
// that it takes lies in the folder.
void PlaceRegistry(const TemporaryFolder& folder, const RegistryEntries& entries);
