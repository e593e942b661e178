#include "headless/viewport/pixel_module.h"

#include "platform/modules.h"
#include "platform/process.h"

namespace headless {
namespace {

// The loader's words may begin with the path that was asked for.
std::string WhyNotLoaded(const std::string& path) {
    std::string why = platform::LastLoadFailure();
    if (why.starts_with(path + ": ")) why.erase(0, path.size() + 2);
    return why;
}

PixelModule Load() {
    const std::string path = platform::BesideProgram(platform::ModuleFile(kViewportModule));
    const HMODULE module = LoadLibraryA(path.c_str());
    PixelModule loaded;
    if (!module) {
        loaded.error = "pictures need the library " + path +
                       ", which is built where OpenGL and libpng are, and cannot be loaded (" +
                       WhyNotLoaded(path) + ")";
        return loaded;
    }
    loaded.drawPixels = platform::Routine<DrawPixelsRoutine>(module, kDrawPixels);
    loaded.encodePng = platform::Routine<EncodePngRoutine>(module, kEncodePng);
    if (!loaded.drawPixels || !loaded.encodePng)
        loaded.error = path + ": is not the library that draws pictures";
    return loaded;
}

}  // namespace

const PixelModule& ThePixelModule() {
    static const PixelModule module = Load();
    return module;
}

}  // namespace headless
