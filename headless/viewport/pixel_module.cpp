#include "viewport/pixel_module.h"

#include "platform/beside_program.h"
#include "platform/load_failure.h"
#include "platform/win32.h"

namespace headless {
namespace {

template <class Routine>
Routine* Bind(HMODULE module, const char* name) {
    return reinterpret_cast<Routine*>(GetProcAddress(module, name));
}

PixelModule Load() {
    const std::string path = platform::BesideProgram(kViewportModule);
    const HMODULE module = LoadLibraryA(path.c_str());
    PixelModule loaded;
    if (!module) {
        loaded.error = "pictures need the library " + path + ", which cannot be loaded (" +
                       platform::LastLoadFailure() + ")";
        return loaded;
    }
    loaded.drawPixels = Bind<DrawPixelsRoutine>(module, kDrawPixels);
    loaded.encodePng = Bind<EncodePngRoutine>(module, kEncodePng);
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
