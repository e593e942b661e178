#pragma once

#include <GL/glcorearb.h>

#include <string>

#include "headless/draw_list.h"
#include "headless/drawing/view.h"

namespace headless {

// Draws batches into whatever canvas has begun. It lives while the context is current.
class Painter {
  public:
    Painter();
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    // Why nothing can be drawn, in one line; empty if it can.
    const std::string& Error() const { return error_; }

    void Draw(const DrawList& list, const View& view) const;

  private:
    std::string Start();
    void Draw(const DrawBatch& batch) const;

    GLuint program_ = 0;
    GLuint vertices_ = 0;
    GLuint layout_ = 0;
    std::string error_;
};

}  // namespace headless
