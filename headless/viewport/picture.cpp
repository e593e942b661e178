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

std::size_t RowBytes(const Picture& picture) {
    return static_cast<std::size_t>(picture.width) * kChannels;
}

// `picture` lies inside `onto`.
void Paste(const Picture& picture, std::size_t left, std::size_t top, Picture& onto) {
    const std::size_t row = RowBytes(picture);
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y)
        std::copy_n(&picture.rgb[y * row], row,
                    &onto.rgb[(top + y) * RowBytes(onto) + left * kChannels]);
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

Picture SideBySide(const std::vector<Picture>& pictures, int columns) {
    if (pictures.empty()) return {};
    const auto across = std::min(static_cast<std::size_t>(columns), pictures.size());
    const std::size_t down = (pictures.size() + across - 1) / across;
    const Picture& first = pictures.front();
    Picture sheet{.width = first.width * static_cast<int>(across),
                  .height = first.height * static_cast<int>(down),
                  .rgb = {}};
    const std::array background{Byte(kBackground.red), Byte(kBackground.green),
                                Byte(kBackground.blue)};
    sheet.rgb.reserve(RowBytes(sheet) * static_cast<std::size_t>(sheet.height));
    while (sheet.rgb.size() < RowBytes(sheet) * static_cast<std::size_t>(sheet.height))
        sheet.rgb.insert(sheet.rgb.end(), background.begin(), background.end());
    for (std::size_t i = 0; i < pictures.size(); ++i)
        Paste(pictures[i], i % across * static_cast<std::size_t>(first.width),
              i / across * static_cast<std::size_t>(first.height), sheet);
    return sheet;
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
