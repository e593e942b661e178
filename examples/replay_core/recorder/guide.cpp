#include <algorithm>

#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/helper_look.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/scenery.h"
#include "replay_core/state/node_book.h"
#include "tvl/mesh.h"
#include "tvl/snapshot.h"

namespace replay {
namespace {

constexpr double kSpacingMetres = 0.25;
constexpr int kMostArrows = 400;  // along one curve

// Of the way from one arrow to the next. An arrow is flat and lies on its broad side.
constexpr double kArrowLength = 0.8;
constexpr double kArrowWaist = 0.3;
constexpr double kArrowHalfWidth = 0.3;
constexpr double kArrowHalfThickness = 0.08;

constexpr Vector3 kHostUp = {0, 0, 1};

constexpr Colour kArrowColour = {0.35F, 0.8F, 0.45F};

// Flat on the ground as far as it can be: one that points straight up lies any way.
Vector3 SideOf(const Vector3& along) {
    const Vector3 side = Cross(along, kHostUp);
    const double length = Length(side);
    return length > 1e-6 ? Scaled(side, 1 / length) : AcrossFrom(along);
}

void AddArrow(TVL::CMesh& mesh, const Vector3& place, const Vector3& along, double spacing) {
    const Vector3 side = SideOf(along);
    AddSpike(mesh, {.start = place,
                    .waist = Sum(place, Scaled(along, kArrowWaist * spacing)),
                    .side = Scaled(side, kArrowHalfWidth * spacing),
                    .front = Scaled(Cross(along, side), kArrowHalfThickness * spacing),
                    .tip = Sum(place, Scaled(along, kArrowLength * spacing))});
}

// Along the present curve. One without length gets no arrow.
void AddArrows(TVL::CMesh& mesh, TVL::CSnapshot_Shape& shape, double hostUnitsPerMetre) {
    const double length = shape.GetCurveLength();
    if (!(length > 0)) return;
    const double wanted = length / (kSpacingMetres * hostUnitsPerMetre);
    const int count = static_cast<int>(std::clamp(wanted, 1.0, double{kMostArrows}));
    for (int arrow = 0; arrow < count; ++arrow) {
        const double parameter = static_cast<double>(arrow) / count;
        AddArrow(mesh, shape.GetCurvePoint(parameter), shape.GetCurveTangent(parameter),
                 length / count);
    }
}

// A snapshot that was lent before has the curve that was set on it then, and goes back with it.
TVL::CMesh ArrowsAlong(TVL::CSnapshot_Shape& shape, double hostUnitsPerMetre) {
    TVL::CMesh mesh;
    const int before = shape.GetCurve();
    for (int curve = 0; curve < shape.GetCurveCount(); ++curve) {
        shape.SetCurve(curve);
        AddArrows(mesh, shape, hostUnitsPerMetre);
    }
    shape.SetCurve(before);
    return mesh;
}

}  // namespace

std::string MakeGuide(TVL::AdaptorInterface& adaptor, Take& take, const std::string& name,
                      TVL::CoreNode& shape, double hostUnitsPerMetre) {
    if (adaptor.FindNode(&take, name)) return {};
    const double seconds = adaptor.GetCurrentTime();
    const ShapeLoan curves(shape, seconds);
    const TransformLoan place(shape, seconds);
    if (!curves || !place) return "\"" + shape.GetName() + "\" is no shape to be guided by";
    take.Book().MakeRoom(1);
    TVL::CoreNode* const guide =
        AsCoreNode(adaptor.CreateHelperNode(&take, name, nullptr, {}, &take.Book()));
    if (!guide) return "the host made no node for \"" + name + "\"";
    DressNode(*guide, ArrowsAlong(*curves, hostUnitsPerMetre), kArrowColour);
    const TransformLoan snapshot(*guide, seconds);
    if (snapshot) snapshot->SetWorldTransform(place->GetWorldTransform());
    return {};
}

}  // namespace replay
