#include "command/drawing.h"

#include "command/core_stage.h"
#include "command/exit_status.h"
#include "headless/scene_view.h"
#include "host/interface.h"

namespace headless {
namespace {

// Handles of the Bézier form of a uniform Catmull-Rom curve (E. Catmull and R. Rom, "A class of
// local interpolating splines", 1974). The ends of an open curve head for their neighbours.
void Smooth(Spline& spline) {
    const std::vector<Knot> straight = spline.knots;
    const std::size_t count = straight.size();
    for (std::size_t i = 0; i < count; ++i) {
        const bool isFirst = i == 0 && !spline.isClosed;
        const bool isLast = i + 1 == count && !spline.isClosed;
        const Point3 before = straight[isFirst ? i : (i + count - 1) % count].place;
        const Point3 after = straight[isLast ? i : (i + 1) % count].place;
        const Point3 handle = (after - before) * (isFirst || isLast ? 1 / 3.0F : 1 / 6.0F);
        spline.knots[i].in = straight[i].place - handle;
        spline.knots[i].out = straight[i].place + handle;
    }
}

Object* New(const GroundSketch& ground) {
    return NewGround(ground.side, ground.divisions);
}

Object* New(const SphereSketch& sphere) {
    return NewSphere(sphere.radius, sphere.segments);
}

Object* New(const PathSketch& path) {
    Spline spline = StraightLines(path.places);
    spline.isClosed = path.isClosed;
    if (path.isSmooth) Smooth(spline);
    return NewSplines({spline});
}

Object* NewGuideOf(Object* object, const GuideLook& look) {
    Object* const guide = NewGuide(object, look);
    if (!guide) throw Failure("no guide object can be drawn: its class is not loaded");
    return guide;
}

Object* NewObject(const DrawOptions& options) {
    Object* const object =
        std::visit([](const auto& sketch) { return New(sketch); }, options.sketch);
    if (options.guide) return NewGuideOf(object, *options.guide);
    return options.bendDegreesPerSecond == 0 ? object
                                             : NewBend(object, options.bendDegreesPerSecond);
}

INode& Place(const DrawOptions& options) {
    INode* const node = GetCOREInterface()->CreateObjectNode(NewObject(options));
    if (!options.name.empty()) node->SetName(options.name.c_str());
    Matrix3 world;
    world.SetTranslate(options.at);
    node->SetNodeTM(0, world);
    return *node;
}

}  // namespace

DrawResult Draw(const DrawOptions& options) {
    CoreStage stage({.guests = Guests::kPluginAlone});
    if (!options.scene.empty()) stage.Open(options.scene);
    INode& node = Place(options);
    stage.Save(options.target);
    return {.name = node.GetName(),
            .handle = node.GetHandle(),
            .nodes = Nodes().size(),
            .complaints = stage.TakeNewsInOne().complaints};
}

}  // namespace headless
