#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <span>

#include "headless/scene_file/atomic_file.h"
#include "headless/scene_file/scene_file.h"
#include "headless/viewport.h"
#include "headless/viewport/pixel_module.h"
#include "headless/viewport/view_camera.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

// The module that makes pixels and PNG files, with its routines. It is loaded when it is first
// asked for and stays for the rest of the process: what draws is costly to start.
struct PixelModule {
    std::string error;  // why it is not there, in one line; empty if it is
    DrawPixelsRoutine* drawPixels = nullptr;
    EncodePngRoutine* encodePng = nullptr;
};

// Beside the host's library, which a program elsewhere may be linked with. A bare name would be
// looked for in folders of the system.
std::string ModulePath() {
    static const char here = 0;
    const std::filesystem::path host = platform::FileOfModule(&here);
    if (host.empty()) return {};
    return platform::ToNarrow(host.parent_path() / platform::ModuleFile(kViewportModule));
}

PixelModule Load() {
    const std::string path = ModulePath();
    const HMODULE module = LoadLibraryA(path.c_str());
    PixelModule loaded;
    if (!module) {
        loaded.error = "pictures need the library " + path +
                       ", which is built where OpenGL and libpng are, and cannot be loaded (" +
                       platform::LastLoadFailureOf(path) + ")";
        return loaded;
    }
    loaded.drawPixels = platform::Routine<DrawPixelsRoutine>(module, kDrawPixels);
    loaded.encodePng = platform::Routine<EncodePngRoutine>(module, kEncodePng);
    if (!loaded.drawPixels || !loaded.encodePng)
        loaded.error = path + ": is not the library that draws pictures";
    return loaded;
}

const PixelModule& ThePixelModule() {
    static const PixelModule module = Load();
    return module;
}

constexpr std::size_t kChannels = 3;

std::size_t ByteAt(const Picture& picture, int left, int top) {
    return (static_cast<std::size_t>(top) * static_cast<std::size_t>(picture.width) +
            static_cast<std::size_t>(left)) *
           kChannels;
}

}  // namespace

std::string DrawPicture(const ViewportSettings& settings, TimeValue t, Picture& into) {
    const PixelModule& module = ThePixelModule();
    if (!module.error.empty()) return module.error;
    const SeenScene seen = SeeScene(settings, t);
    std::string error = seen.aimed.error;
    if (error.empty()) module.drawPixels(seen.list, seen.aimed.view, into, error);
    return error;
}

Picture EmptySheet(int width, int height) {
    Picture sheet{.width = width, .height = height, .rgb = {}};
    sheet.rgb.resize(ByteAt(sheet, 0, height));
    const std::array background{Byte(kBackground.red), Byte(kBackground.green),
                                Byte(kBackground.blue)};
    for (std::size_t at = 0; at < sheet.rgb.size(); at += kChannels)
        std::ranges::copy(background, &sheet.rgb[at]);
    return sheet;
}

void PutOnSheet(const Picture& picture, int left, int top, Picture& sheet) {
    for (int y = 0; y < picture.height; ++y)
        std::copy_n(&picture.rgb[ByteAt(picture, 0, y)], ByteAt(picture, picture.width, 0),
                    &sheet.rgb[ByteAt(sheet, left, top + y)]);
}

std::string WritePng(const Picture& picture, const std::string& path) {
    const PixelModule& module = ThePixelModule();
    if (!module.error.empty()) return module.error;
    std::vector<std::uint8_t> bytes;
    std::string error;
    if (!module.encodePng(picture, bytes, error)) return path + ": " + error;
    try {
        AtomicFile file(path);
        if (!file.Sink().Append(std::as_bytes(std::span(bytes)))) file.FailToWrite();
        file.Close();
        file.TakePlace();
    } catch (const SceneFileError& failure) {
        return failure.what();
    }
    return "";
}

}  // namespace headless
