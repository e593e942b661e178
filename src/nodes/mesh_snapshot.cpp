#include <utility>

#include "core_link/core_answer.h"
#include "core_link/core_link.h"
#include "measures/host_clock.h"
#include "nodes/node_lifetime.h"
#include "nodes/snapshots.h"
#include "objects/host_objects.h"
#include "objects/mesh_exchange.h"
#include "tvl/ids.h"

namespace {

// A conversion can give what is no triangle mesh.
ConvertedMesh TakeConverted(Object* object) {
    ConvertedMesh mesh(AsTriangleMesh(object));
    if (object && !mesh) object->DeleteThis();
    return mesh;
}

bool LendsMesh(INode* host) {
    if (!host) return false;
    Object* const object = host->GetObjectRef();
    return !object || object->SuperClassID() != CAMERA_CLASS_ID;
}

}  // namespace

void CMAXNode::CMAXSnapshot_Mesh::Acquire(CMAXNode& lender, TimeValue ticks, MeshCache* cache) {
    hostNode = lender.hostNode;
    CachedMesh cached = cache ? cache->Find(hostNode) : CachedMesh();
    if (!cached.expired()) {
        meshObject = std::move(cached);
        return;
    }
    meshObject = {};
    INode* const host = hostNode.Get();
    Object* const evaluated = host ? host->EvalWorldState(ticks, true).obj : nullptr;
    if (!evaluated || !evaluated->CanConvertToType(kTriObjectClassId)) return;
    Object* const object = evaluated->ConvertToType(ticks, kTriObjectClassId);
    if (object == evaluated) {
        meshObject = EvaluatedMesh{ShownObject(hostNode), ticks};
        return;
    }
    ConvertedMesh converted = TakeConverted(object);
    if (!converted) return;
    if (cache)
        meshObject = cache->Keep(hostNode, std::move(converted));
    else
        meshObject = std::move(converted);
}

void CMAXNode::CMAXSnapshot_Mesh::LoseHost() {
    meshObject = {};
    hostNode = {};
}

TriObject* CMAXNode::CMAXSnapshot_Mesh::LiveMesh() const {
    INode* const host = hostNode.Get();
    if (!host) return nullptr;
    if (const auto* evaluated = std::get_if<EvaluatedMesh>(&meshObject)) {
        if (!evaluated->shown.Get()) return nullptr;
        return AsTriangleMesh(host->EvalWorldState(evaluated->ticks, true).obj);
    }
    if (const auto* cached = std::get_if<CachedMesh>(&meshObject)) return cached->lock().get();
    const auto* converted = std::get_if<ConvertedMesh>(&meshObject);
    return converted ? converted->get() : nullptr;
}

void CMAXNode::CMAXSnapshot_Mesh::SetMesh(TVL::CMesh mesh) {
    AnswerCore("SetMesh", [&] {
        if (TriObject* object = LiveMesh()) WriteMesh(mesh, object->GetMesh());
    });
}

TVL::CMesh CMAXNode::CMAXSnapshot_Mesh::GetMesh() {
    return AnswerCore("GetMesh", [&] {
        TriObject* const object = LiveMesh();
        return object ? ReadMesh(object->GetMesh()) : TVL::CMesh();
    });
}

bool CMAXNode::CMAXSnapshot_Mesh::IntersectRay(const std::array<double, 3>& origin,
                                               const std::array<double, 3>& direction,
                                               double* distance, std::array<double, 3>* normal) {
    return AnswerCore("IntersectRay", [&]() -> bool {
        TriObject* const object = LiveMesh();
        if (!object) return false;
        float at = 0;
        Point3 norm;
        const Ray ray{Narrowed(origin), Narrowed(direction)};
        const bool hits = object->GetMesh().IntersectRay(ray, at, norm) != 0;
        if (distance) *distance = static_cast<double>(at);
        if (normal) *normal = Widened(norm);
        return hits;
    });
}

TVL::CSnapshot_Mesh* CMAXNode::AcquireMeshSnapshot(double seconds) {
    return AnswerCore("AcquireMeshSnapshot", [&]() -> TVL::CSnapshot_Mesh* {
        if (!LendsMesh(HostNode())) return nullptr;

        // The Core can end the node, or its host node, while it is asked.
        const NodeWatch self(this);
        const bool isDynamic = CoreOption(TVL::kDynamicMeshes, false);
        if (!self.Get() || !LendsMesh(HostNode())) return nullptr;

        MeshCache* const cache = isDynamic ? nullptr : &ConvertedMeshes();
        return meshPool.Lend(*this, SnapshotTicks(seconds), cache);
    });
}

void CMAXNode::ReleaseMeshSnapshot(TVL::CSnapshot_Mesh* snapshot) {
    meshPool.TakeBack(snapshot);
}
