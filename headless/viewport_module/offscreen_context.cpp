#include "headless/viewport_module/offscreen_context.h"

#include <EGL/eglext.h>

#include <cstdlib>

namespace headless {
namespace {

constexpr EGLint kConfig[] = {EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
constexpr EGLint kContext[] = {EGL_CONTEXT_MAJOR_VERSION,
                               3,
                               EGL_CONTEXT_MINOR_VERSION,
                               3,
                               EGL_CONTEXT_OPENGL_PROFILE_MASK,
                               EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                               EGL_NONE};

}  // namespace

OffscreenContext::OffscreenContext() : error_(Start()) {}

// A GPU would round otherwise, so the software renderer is asked for before Mesa looks around.
std::string OffscreenContext::Start() {
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display_ == EGL_NO_DISPLAY || !eglInitialize(display_, nullptr, nullptr))
        return "EGL has no surfaceless platform here (Debian: libegl-mesa0)";
    if (!eglBindAPI(EGL_OPENGL_API)) return "EGL has no desktop OpenGL here";
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display_, kConfig, &config, 1, &count) || count == 0)
        return "there is no software renderer for OpenGL (Debian: libgl1-mesa-dri)";
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, kContext);
    if (context_ == EGL_NO_CONTEXT ||
        !eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_))
        return "the renderer does not offer OpenGL 3.3";
    return "";
}

// The display itself stays with EGL to the end of the process: taking it down unloads Mesa's
// driver, which forgets some of its memory then.
OffscreenContext::~OffscreenContext() {
    if (display_ == EGL_NO_DISPLAY) return;
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context_ != EGL_NO_CONTEXT) eglDestroyContext(display_, context_);
    eglReleaseThread();
}

}  // namespace headless
