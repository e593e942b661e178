#include "headless/viewport_module/canvas.h"

#include <algorithm>
#include <cstddef>

#include "headless/viewport/pixel_module.h"

namespace headless {
namespace {

constexpr GLsizei kSamples = 4;
constexpr std::size_t kChannels = 3;

enum Image { kColourImage, kDepthImage, kResolvedImage };
enum Buffer { kSampled, kPlain };

bool IsComplete() {
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void Attach(GLenum place, GLuint image) {
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, image);
}

// OpenGL's rows go from bottom to top.
void TurnRows(Picture& picture) {
    const std::size_t row = static_cast<std::size_t>(picture.width) * kChannels;
    const auto rows = static_cast<std::size_t>(picture.height);
    const auto at = [&](std::size_t y) {
        return picture.rgb.begin() + static_cast<std::ptrdiff_t>(y * row);
    };
    for (std::size_t y = 0; y < rows / 2; ++y)
        std::swap_ranges(at(y), at(y + 1), at(rows - 1 - y));
}

}  // namespace

Canvas::Canvas(int width, int height) : width_(width), height_(height) {
    glGenRenderbuffers(3, images_);
    glGenFramebuffers(2, buffers_);
    error_ = Start();
}

Canvas::~Canvas() {
    glDeleteFramebuffers(2, buffers_);
    glDeleteRenderbuffers(3, images_);
}

std::string Canvas::Start() {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &largest);
    const std::string size = std::to_string(width_) + "x" + std::to_string(height_);
    if (width_ > largest || height_ > largest)
        return size + " pixels are more than the renderer has (" + std::to_string(largest) +
               " each way)";
    const auto store = [&](Image image, GLsizei samples, GLenum format) {
        glBindRenderbuffer(GL_RENDERBUFFER, images_[image]);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width_, height_);
    };
    store(kColourImage, kSamples, GL_RGBA8);
    store(kDepthImage, kSamples, GL_DEPTH_COMPONENT32F);
    store(kResolvedImage, 0, GL_RGBA8);
    glBindFramebuffer(GL_FRAMEBUFFER, buffers_[kPlain]);
    Attach(GL_COLOR_ATTACHMENT0, images_[kResolvedImage]);
    const bool isPlainComplete = IsComplete();
    glBindFramebuffer(GL_FRAMEBUFFER, buffers_[kSampled]);
    Attach(GL_COLOR_ATTACHMENT0, images_[kColourImage]);
    Attach(GL_DEPTH_ATTACHMENT, images_[kDepthImage]);
    if (glGetError() != GL_NO_ERROR || !isPlainComplete || !IsComplete())
        return "the renderer has no room for " + size + " pixels";
    return "";
}

void Canvas::Begin() const {
    glBindFramebuffer(GL_FRAMEBUFFER, buffers_[kSampled]);
    glViewport(0, 0, width_, height_);
    glDepthMask(GL_TRUE);
    glClearColor(kBackground.red, kBackground.green, kBackground.blue, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

bool Canvas::Read(Picture& into) const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, buffers_[kSampled]);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, buffers_[kPlain]);
    glBlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, buffers_[kPlain]);
    into = {.width = width_, .height = height_, .rgb = {}};
    into.rgb.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) *
                    kChannels);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width_, height_, GL_RGB, GL_UNSIGNED_BYTE, into.rgb.data());
    TurnRows(into);
    return glGetError() == GL_NO_ERROR;
}

}  // namespace headless
