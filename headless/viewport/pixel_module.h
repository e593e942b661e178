#pragma once

#include <string>

#include "headless/viewport/module_routines.h"

namespace headless {

// The module that makes pixels and PNG files, with its routines. It is loaded when it is first
// asked for and stays for the rest of the process: what draws is costly to start.
struct PixelModule {
    std::string error;  // why it is not there, in one line; empty if it is
    DrawPixelsRoutine* drawPixels = nullptr;
    EncodePngRoutine* encodePng = nullptr;
};
const PixelModule& ThePixelModule();

}  // namespace headless
