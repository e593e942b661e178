#pragma once

#include <string>
#include <vector>

#include "headless/draw_list.h"
#include "headless/drawing/view.h"
#include "host/graphics_window.h"
#include "host/mesh.h"

namespace headless {

struct DrawnMesh;

// In object space.
struct Line {
    Point3 from;
    Point3 to;
};

// The host's own window: it turns what is drawn into a list in world space. Every GraphicsWindow of
// this host is one.
class DrawWindow final : public GraphicsWindow {
  public:
    explicit DrawWindow(const View& view) : view_(view) {}

    std::uint32_t getRndLimits() override { return limits_; }
    void setRndLimits(std::uint32_t limits) override { limits_ = limits; }
    Material* getMaterial() override { return &material_; }
    void setTransform(const Matrix3& objectToWorld) override { transform_ = objectToWorld; }
    void setColor(int type, float red, float green, float blue) override;

    // In object space, under the limits, transform and colours that are set.
    void DrawMesh(const Mesh& mesh);
    void DrawLine(const Point3& from, const Point3& to);
    void DrawWord(const Point3& place, std::string text, bool isName);

    // Whether some of the mesh, as it would be drawn, or of the lines lies in the region, or all of
    // it where the region asks for that.
    bool Hits(const Mesh& mesh, const HitRegion& region) const;
    bool Hits(const std::vector<Line>& lines, const HitRegion& region) const;

    const View& Shown() const { return view_; }
    const DrawList& List() const { return list_; }

  private:
    void DrawFaces(const DrawnMesh& mesh);
    void DrawEdges(const DrawnMesh& mesh);
    DrawBatch& BatchFor(bool isTriangles);

    View view_;
    std::uint32_t limits_ = GW_ILLUM | GW_Z_BUFFER;
    Material material_;
    Matrix3 transform_;
    Colour line_{1, 1, 1};
    Colour fill_{1, 1, 1};
    DrawList list_;
};

// A view on such a window, as objects get it.
class DrawView final : public ViewExp {
  public:
    explicit DrawView(DrawWindow& window) : window_(window) {}
    GraphicsWindow* getGW() override { return &window_; }

  private:
    DrawWindow& window_;
};

}  // namespace headless
