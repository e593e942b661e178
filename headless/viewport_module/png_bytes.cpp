#include "headless/viewport_module/png_bytes.h"

#include <png.h>

namespace headless {
namespace {

constexpr int kAsBytes = 0;            // not from 16 bits down to 8
constexpr png_int_32 kPackedRows = 0;  // no bytes between them

}  // namespace

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

}  // namespace headless
