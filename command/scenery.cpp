#include "command/scenery.h"

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/units.h"

namespace headless {
namespace {

constexpr char kGround[] = "Ground";
constexpr double kSideMetres = 20;
constexpr int kDivisions = 10;

}  // namespace

std::uint32_t FindOrDrawGround() {
    if (INode* const ground = FindNode(kGround)) return ground->GetHandle();
    const double side = kSideMetres / GetMasterScale(UNITS_METERS);
    INode* const ground =
        GetCOREInterface()->CreateObjectNode(NewGround(static_cast<float>(side), kDivisions));
    ground->SetName(kGround);
    return ground->GetHandle();
}

std::optional<std::uint32_t> FirstShape() {
    for (const NodeView& node : Nodes())
        if (node.objectSuperClass == SHAPE_CLASS_ID) return node.handle;
    return std::nullopt;
}

}  // namespace headless
