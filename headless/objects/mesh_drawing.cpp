#include "headless/drawing/draw_window.h"
#include "host/mesh.h"

using headless::DrawWindow;

// A window that is not the host's own has nothing drawn into it and shows nothing to hit.

int Mesh::render(GraphicsWindow* window, Material*, RECT*, int, int) {
    if (auto* const own = dynamic_cast<DrawWindow*>(window)) own->DrawMesh(*this);
    return 0;
}

int Mesh::select(GraphicsWindow* window, Material*, HitRegion* region, int, int) {
    const auto* const own = dynamic_cast<const DrawWindow*>(window);
    return own && region && own->Hits(*this, *region) ? 1 : 0;
}
