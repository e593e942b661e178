#pragma once

#include <array>
#include <cstdint>

#include "foundation/live_instances.h"
#include "host/mesh.h"
#include "host/object.h"
#include "tvl/mesh.h"

inline constexpr Class_ID kCustomHelperObjectClassId{0x22E322A5, 0x3010606F};
inline constexpr const char* kCustomHelperObjectName = "Tarvo_Helper";

// A guide object that shows a fixed mesh in the viewports in one colour and stores it in the scene
// file. The adaptor never creates one; the host does, from scene files or at the user's hand.
// The order of the fields is part of the contract.
class CustomHelperObject final : public HelperObject {
  public:
    // Every CustomHelperObject alive.
    static LiveInstances<CustomHelperObject> liveInstances;

    CustomHelperObject();
    ~CustomHelperObject() override;

    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return kCustomHelperObjectClassId; }
    void DeleteThis() override { delete this; }
    void FreeCaches() override;

    // Both always report success. A damaged chunk gives what is whole of it.
    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;

    // Drawn into and hit in the view's window; without node, window or place, nothing is.
    int HitTest(TimeValue t, INode* node, int type, int crossing, int flags, IPoint2* point,
                ViewExp* view) override;
    int Display(TimeValue t, INode* node, ViewExp* view, int flags) override;

    void GetWorldBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box) override;
    void GetLocalBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box) override;
    HostString GetObjectName() override { return kCustomHelperObjectName; }
    void InitNodeName(HostString& name) override { name = kCustomHelperObjectName; }
    ObjectState Eval(TimeValue t) override;

    void RebuildDisplayMesh();

    std::uint8_t meshDirty = 1;  // non-zero: displayMesh is older than mesh
    TVL::CMesh mesh;
    Mesh displayMesh;                      // built from mesh for drawing and hit tests
    std::array<float, 3> colour{1, 0, 0};  // red, green, blue, 0 to 1
    std::uint8_t wireframe = 1;
    std::uint8_t backfaceCull = 0;
    std::array<std::uint8_t, 2> reserved{};  // stored and loaded, nothing else

  private:
    friend class LiveInstances<CustomHelperObject>;
    LiveLink<CustomHelperObject> liveLink;
};
