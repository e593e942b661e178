#include <cmath>

#include "core_link/core_answer.h"
#include "measures/host_clock.h"
#include "nodes/snapshots.h"
#include "objects/custom_helper_object.h"
#include "objects/host_objects.h"
#include "objects/mesh_exchange.h"

namespace {

// The low 8 bits of the channel times 255, however large that is; nothing is clamped to them. What
// is no number gives 0.
std::uint32_t WireChannel(float channel) {
    constexpr double kRound = 256;  // the remainder keeps the low bits, and is exact
    const double scaled = std::trunc(static_cast<double>(channel) * 255.0);
    return static_cast<std::uint32_t>(TruncatedToInt32(std::fmod(scaled, kRound))) & 0xFF;
}

// The host's colour value: red in the low byte.
std::uint32_t WireColour(float red, float green, float blue) {
    return WireChannel(red) | WireChannel(green) << 8 | WireChannel(blue) << 16;
}

}  // namespace

void CMAXNode::CMAXSnapshot_Helper::Acquire(CMAXNode& lender, Object* object) {
    hostObject = object;
    hostNode = lender.hostNode;
}

void CMAXNode::CMAXSnapshot_Helper::LoseHost() {
    hostObject = nullptr;
    hostNode = {};
}

void CMAXNode::CMAXSnapshot_Helper::Write(const TVL::CMesh& mesh) {
    if (TriObject* object = AsTriangleMesh(LiveObject())) WriteMesh(mesh, object->GetMesh());
}

void CMAXNode::CMAXSnapshot_Helper::SetMesh(TVL::CMesh mesh) {
    AnswerCore("SetMesh", [&] { Write(mesh); });
}

void CMAXNode::CMAXSnapshot_Helper::SetColor(float red, float green, float blue) {
    AnswerCore("SetColor", [&] {
        if (CustomHelperObject* helper = LiveHelper()) helper->colour = {red, green, blue};
        if (INode* host = LiveNode()) host->SetWireColor(WireColour(red, green, blue));
    });
}

void CMAXNode::CMAXSnapshot_Helper::SetWireframe(bool wireframe) {
    AnswerCore("SetWireframe", [&] {
        if (CustomHelperObject* helper = LiveHelper()) helper->wireframe = wireframe;
    });
}

void CMAXNode::CMAXSnapshot_Helper::SetBackfaceCull(bool backfaceCull) {
    AnswerCore("SetBackfaceCull", [&] {
        if (CustomHelperObject* helper = LiveHelper()) helper->backfaceCull = backfaceCull;
    });
}

Object* CMAXNode::CMAXSnapshot_Helper::LiveObject() const {
    return !hostNode.IsSet() || LiveNode() ? hostObject : nullptr;
}

INode* CMAXNode::CMAXSnapshot_Helper::LiveNode() const {
    INode* const host = hostNode.Get();
    return host && host->GetObjectRef() == hostObject ? host : nullptr;
}

CustomHelperObject* CMAXNode::CMAXSnapshot_Helper::LiveHelper() const {
    return CustomHelperObject::liveInstances.Find(LiveObject());
}

TVL::CSnapshot_Helper* CMAXNode::AcquireHelperSnapshot() {
    return AnswerCore("AcquireHelperSnapshot", [&]() -> TVL::CSnapshot_Helper* {
        INode* const host = HostNode();
        Object* const object = host ? host->GetObjectRef() : nullptr;
        if (!host || (object && object->SuperClassID() == CAMERA_CLASS_ID)) return nullptr;
        return helperPool.Lend(*this, object);
    });
}

void CMAXNode::ReleaseHelperSnapshot(TVL::CSnapshot_Helper* snapshot) {
    helperPool.TakeBack(snapshot);
}
