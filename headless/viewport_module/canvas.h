#pragma once

#include <GL/glcorearb.h>

#include <string>

#include "headless/viewport.h"

namespace headless {

// An image of colour and depth that is drawn into, four samples a pixel, and that of one sample
// which it is read back from. It lives while the context is current.
class Canvas {
  public:
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Why nothing can be drawn, in one line; empty if it can.
    const std::string& Error() const { return error_; }

    // What is drawn from now on goes here.
    void Begin() const;

    // What was drawn. False if the renderer failed meanwhile.
    bool Read(Picture& into) const;

  private:
    std::string Start();

    int width_;
    int height_;
    GLuint images_[3] = {};   // colour and depth with samples, colour without
    GLuint buffers_[2] = {};  // with samples, without
    std::string error_;
};

}  // namespace headless
