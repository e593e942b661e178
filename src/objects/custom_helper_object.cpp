#include "objects/custom_helper_object.h"

#include "host/node.h"
#include "objects/mesh_exchange.h"

namespace {

constexpr int kAllComponents = 255;   // of Mesh::render
constexpr int kHitEpsilonPixels = 4;  // around the mouse
constexpr std::uint32_t kShadedLimits = GW_ILLUM | GW_SPECULAR;
constexpr std::uint32_t kWireframeLimits = GW_WIREFRAME | GW_FLAT;

// Gives a window its limits back, however the drawing ends.
class KeptLimits {
  public:
    explicit KeptLimits(GraphicsWindow& window) : window_(window), limits_(window.getRndLimits()) {}
    ~KeptLimits() { window_.setRndLimits(limits_); }
    KeptLimits(const KeptLimits&) = delete;
    KeptLimits& operator=(const KeptLimits&) = delete;

    std::uint32_t Value() const { return limits_; }

  private:
    GraphicsWindow& window_;
    const std::uint32_t limits_;
};

std::uint32_t LimitsFor(const CustomHelperObject& helper, std::uint32_t limits) {
    limits |= GW_Z_BUFFER;
    if (helper.backfaceCull != 0) limits |= GW_BACKCULL;
    if (helper.wireframe != 0) limits = (limits & ~kShadedLimits) | kWireframeLimits;
    return limits;
}

void SetColours(GraphicsWindow& window, bool isSelected, const std::array<float, 3>& colour) {
    const auto& [red, green, blue] = colour;
    if (isSelected) {
        window.setColor(LINE_COLOR, 1, 1, 1);
        return;
    }
    window.setColor(LINE_COLOR, red, green, blue);
    window.setColor(FILL_COLOR, red, green, blue);
}

GraphicsWindow* WindowOf(ViewExp* view) {
    return view ? view->getGW() : nullptr;
}

}  // namespace

constinit LiveInstances<CustomHelperObject> CustomHelperObject::liveInstances;

CustomHelperObject::CustomHelperObject() {
    liveInstances.Append(*this);
}

CustomHelperObject::~CustomHelperObject() {
    liveInstances.Remove(*this);
}

void CustomHelperObject::FreeCaches() {
    displayMesh.FreeAll();
    meshDirty = 1;
}

ObjectState CustomHelperObject::Eval(TimeValue) {
    return ObjectState{this};
}

void CustomHelperObject::GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) {
    RebuildDisplayMesh();
    box = displayMesh.getBoundingBox();
}

void CustomHelperObject::GetWorldBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box) {
    GetLocalBoundBox(t, node, view, box);
    if (node) box = box * node->GetObjectTM(t);
}

void CustomHelperObject::RebuildDisplayMesh() {
    WriteDisplayMesh(mesh, displayMesh);
    meshDirty = 0;
    displayMesh.InvalidateGeomCache();
}

int CustomHelperObject::Display(TimeValue t, INode* node, ViewExp* view, int) {
    if (meshDirty != 0) RebuildDisplayMesh();
    GraphicsWindow* const window = WindowOf(view);
    if (!window || !node) return 0;
    const KeptLimits kept(*window);
    window->setRndLimits(LimitsFor(*this, kept.Value()));
    SetColours(*window, node->Selected(), colour);
    window->setTransform(node->GetObjectTM(t));
    displayMesh.render(window, window->getMaterial(), nullptr, kAllComponents, 1);
    return 0;
}

int CustomHelperObject::HitTest(TimeValue t, INode* node, int type, int crossing, int flags,
                                IPoint2* point, ViewExp* view) {
    RebuildDisplayMesh();
    GraphicsWindow* const window = WindowOf(view);
    if (!window || !node || !point) return 0;
    window->setTransform(node->GetObjectTM(t));
    HitRegion region;
    MakeHitRegion(region, type, crossing, kHitEpsilonPixels, point);
    return displayMesh.select(window, node->Mtls(), &region, flags & HIT_ABORTONHIT,
                              node->NumMtls());
}
