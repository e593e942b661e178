#pragma once

#include <cstdint>
#include <string>

#include "headless/core_seat.h"
#include "recorder/tape/tape_writer.h"

namespace headless {

// Whom the host finds when it starts.
enum class Guests {
    kPluginAndCore,
    kPluginAlone,  // it looks for a Core and finds none installed, and so to the process's end
    kNobody,
};

// Whether what crosses the boundary is held against the contract.
enum class WatchChoice {
    kNo,
    kYes,
    kStrict,  // and the command fails for what is found
};

struct GuestChoice {
    Guests guests = Guests::kPluginAndCore;
    std::string core{};  // the library that is the Core; empty for the one that is installed
    CoreBetween* inPlace = nullptr;  // is the Core, and no library; outlives the stage
    std::string plugin{};            // the plug-in; empty for the one beside the program

    std::string tape{};  // the file that takes in all that crosses the boundary; empty for none
    std::uint64_t tapeLimit = recorder::kUsualTapeLimit;  // bytes
    bool withScenes = false;  // those that are opened or merged travel in the tape
    WatchChoice watch = WatchChoice::kNo;
};

}  // namespace headless
