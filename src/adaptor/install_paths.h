#pragma once

#include <string>

// A text that the installer left under the product's key; empty if there is none.
std::string ReadInstallValue(const char* name);

// Whether there is such a text, of which nothing was read because it is longer than 1,023 bytes.
bool IsInstallValueTooLong(const char* name);

// The product's folder below the user's documents, which need not exist, with a closing backslash.
// Empty, and an error in the trace, if the system does not tell where the documents are.
std::string FindDocumentsPath();
