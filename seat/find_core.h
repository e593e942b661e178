#pragma once

#include <string>

namespace headless {

// A path, or why there is none to be had.
struct FoundPath {
    std::string path;
    std::string whyNot;  // in one line; empty if there is a path
};

// The Core that is installed, as the registry names it; where it names none, the one that lies
// beside the program. The file need not be there in the first case.
FoundPath FindInstalledCore();

// The folder that an install key would name for the seat's module to be the Core: it lies beside
// this library, or in a kit where the programs are.
FoundPath FindSeatFolder();

// The seat's module in such a folder.
std::string SeatModule(const std::string& seatFolder);

}  // namespace headless
