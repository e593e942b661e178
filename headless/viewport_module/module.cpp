#include <exception>
#include <new>

#include "headless/viewport/module_routines.h"
#include "headless/viewport_module/canvas.h"
#include "headless/viewport_module/offscreen_context.h"
#include "headless/viewport_module/painter.h"
#include "headless/viewport_module/png_bytes.h"
#include "headless/viewport_module/words.h"
#include "platform/modules.h"

namespace headless {
namespace {

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
