#pragma once

#include <vector>

#include "headless/viewport.h"
#include "tests/headless/host_world.h"

// A host with a viewport in which nothing but the nodes shows.
class ViewportWorld : public HostWorld {
  protected:
    ViewportWorld() { settings.showsGrid = false; }

    // The corners of all triangles or of all lines that are drawn.
    std::vector<headless::DrawVertex> Drawn(bool isTriangles) const {
        std::vector<headless::DrawVertex> all;
        for (const headless::DrawBatch& batch : headless::DrawScene(settings, 0).list.batches)
            if (batch.isTriangles == isTriangles)
                all.insert(all.end(), batch.vertices.begin(), batch.vertices.end());
        return all;
    }

    headless::ViewportSettings settings;
};
