#pragma once

#include <EGL/egl.h>

#include <string>

namespace headless {

// OpenGL without screen or GPU, current in this thread as long as the object lives: Mesa's
// surfaceless platform with its software renderer.
class OffscreenContext {
  public:
    OffscreenContext();
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    // Why there is none, in one line; empty if there is.
    const std::string& Error() const { return error_; }

  private:
    std::string Start();

    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLContext context_ = EGL_NO_CONTEXT;
    std::string error_;
};

}  // namespace headless
