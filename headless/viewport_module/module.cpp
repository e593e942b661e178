#include <png.h>

#include <exception>
#include <new>

#include "headless/viewport/pixel_module.h"
#include "headless/viewport_module/canvas.h"
#include "headless/viewport_module/offscreen_context.h"
#include "headless/viewport_module/painter.h"
#include "headless/viewport_module/words.h"
#include "platform/modules.h"

namespace headless {
namespace {

constexpr int kAsBytes = 0;            // not from 16 bits down to 8
constexpr png_int_32 kPackedRows = 0;  // no bytes between them

// Context and painter start with the first picture and end with the process.
std::string DrawnPixels(const DrawList& list, const View& view, Picture& into) {
    static OffscreenContext context;
    if (!context.Error().empty()) return context.Error();
    static const Painter painter;
    if (!painter.Error().empty()) return painter.Error();
    const Canvas canvas(view.width, view.height);
    if (!canvas.Error().empty()) return canvas.Error();
    canvas.Begin();
    painter.Draw(list, view);
    if (!canvas.Read(into)) return "the renderer has run out of memory";
    DrawWords(list, view, into);
    return "";
}

// A PNG file without a time, so that one picture always gives the same bytes.
std::string PngBytes(const Picture& picture, std::vector<std::uint8_t>& into) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    into.resize(size);
    if (!png_image_write_to_memory(&image, into.data(), &size, kAsBytes, picture.rgb.data(),
                                   kPackedRows, nullptr))
        return std::string("the picture cannot be encoded: ") + image.message;
    into.resize(size);
    return "";
}

// True if the work came to its end.
template <class Work>
bool Guarded(std::string& error, Work work) {
    try {
        error = work();
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory";
    } catch (const std::exception& thrown) {
        error = thrown.what();
    }
    return error.empty();
}

}  // namespace
}  // namespace headless

MODULE_ROUTINE bool DrawPixels(const headless::DrawList& list, const headless::View& view,
                               headless::Picture& into, std::string& error) {
    return headless::Guarded(error, [&] { return headless::DrawnPixels(list, view, into); });
}

MODULE_ROUTINE bool EncodePng(const headless::Picture& picture, std::vector<std::uint8_t>& into,
                              std::string& error) {
    return headless::Guarded(error, [&] { return headless::PngBytes(picture, into); });
}
