#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <tuple>

#include "recorder/proxies/scribe.h"
#include "tvl/node.h"

// Stand for the snapshots that a node lends, one for each. One that is out when its node goes is
// still there in the adaptor; one that is not is gone with it.
namespace recorder {

template <class Base, class Real, ObjectKind kKind>
class SnapshotProxy : public ExtendableProxy<Base, Real> {
  public:
    explicit SnapshotProxy(Scribe& scribe) : ExtendableProxy<Base, Real>(scribe, 0, nullptr) {}

    bool StandsFor(const Real* real) const { return this->real_ == real; }
    bool IsFree() const { return this->id_ == 0; }
    void StandFor(Real* real) {
        this->id_ = this->scribe_.NewId(kKind);
        this->real_ = real;
    }

    void GoOut(double seconds = 0) {
        seconds_.store(seconds, std::memory_order_relaxed);
        isOut_.store(true, std::memory_order_release);
    }
    void ComeBack() { isOut_.store(false, std::memory_order_relaxed); }
    bool IsOut() const { return isOut_.load(std::memory_order_acquire); }
    double Seconds() const { return seconds_.load(std::memory_order_relaxed); }
    void LoseNode() {
        if (!IsOut()) this->real_ = nullptr;
    }
    void LoseAll() { this->real_ = nullptr; }

  private:
    // Another thread may begin a segment meanwhile, and tell what is out.
    std::atomic<bool> isOut_ = false;
    std::atomic<double> seconds_ = 0;
};

class TransformProxy final
    : public SnapshotProxy<CoreNode::Snapshot, CSnapshot, ObjectKind::kSnapshot> {
  public:
    using SnapshotProxy::SnapshotProxy;
    using Real = CSnapshot;
    using enum Operation;

    void SetLocalTransform(const TVL::CMatrix4& transform) override {
        Pass<CSnapshot_SetLocalTransform>(transform);
    }
    TVL::CMatrix4 GetLocalTransform() override { return Pass<CSnapshot_GetLocalTransform>(); }
    TVL::CMatrix4 GetWorldTransform() override { return Pass<CSnapshot_GetWorldTransform>(); }
    void SetWorldTransform(const TVL::CMatrix4& transform) override {
        Pass<CSnapshot_SetWorldTransform>(transform);
    }
    double GetTime() override { return Pass<CSnapshot_GetTime>(); }
};

class HelperProxy final : public SnapshotProxy<CoreNode::Snapshot_Helper, CSnapshot_Helper,
                                               ObjectKind::kHelperSnapshot> {
  public:
    using SnapshotProxy::SnapshotProxy;
    using Real = CSnapshot_Helper;
    using enum Operation;

    void SetMesh(TVL::CMesh mesh) override { Pass<CSnapshot_Helper_SetMesh>(std::move(mesh)); }
    void SetColor(float red, float green, float blue) override {
        Pass<CSnapshot_Helper_SetColor>(red, green, blue);
    }
    void SetWireframe(bool wireframe) override { Pass<CSnapshot_Helper_SetWireframe>(wireframe); }
    void SetBackfaceCull(bool backfaceCull) override {
        Pass<CSnapshot_Helper_SetBackfaceCull>(backfaceCull);
    }
};

class LensProxy final
    : public SnapshotProxy<CoreNode::Snapshot_Lens, CSnapshot_Lens, ObjectKind::kLensSnapshot> {
  public:
    using SnapshotProxy::SnapshotProxy;
    using Real = CSnapshot_Lens;
    using enum Operation;

    void SetFieldOfView(double degrees) override { Pass<CSnapshot_Lens_SetFieldOfView>(degrees); }
    double GetFieldOfView() override { return Pass<CSnapshot_Lens_GetFieldOfView>(); }
    int GetFieldOfViewType() override { return Pass<CSnapshot_Lens_GetFieldOfViewType>(); }
    void SetFieldOfViewType(int type) override { Pass<CSnapshot_Lens_SetFieldOfViewType>(type); }
    void SetTargetDistance(double hostUnits) override {
        Pass<CSnapshot_Lens_SetTargetDistance>(hostUnits);
    }
    double GetTargetDistance() override { return Pass<CSnapshot_Lens_GetTargetDistance>(); }
    double GetTime() override { return Pass<CSnapshot_Lens_GetTime>(); }
    TVL::CMatrix4 GetLensTransform() override { return Pass<CSnapshot_Lens_GetLensTransform>(); }
};

class MeshProxy final
    : public SnapshotProxy<CoreNode::Snapshot_Mesh, CSnapshot_Mesh, ObjectKind::kMeshSnapshot> {
  public:
    using SnapshotProxy::SnapshotProxy;
    using Real = CSnapshot_Mesh;
    using enum Operation;

    void SetMesh(TVL::CMesh mesh) override { Pass<CSnapshot_Mesh_SetMesh>(std::move(mesh)); }
    TVL::CMesh GetMesh() override { return Pass<CSnapshot_Mesh_GetMesh>(); }

    // What a miss leaves behind the pointers is nothing to be told.
    bool IntersectRay(const std::array<double, 3>& origin, const std::array<double, 3>& direction,
                      double* distance, std::array<double, 3>* normal) override {
        const auto make = [&] {
            const bool isHit = real_ && real_->IntersectRay(origin, direction, distance, normal);
            return std::tuple(isHit, isHit && distance ? *distance : 0.0,
                              isHit && normal ? *normal : std::array<double, 3>{});
        };
        return std::get<0>(scribe_.Record<CSnapshot_Mesh_IntersectRay>(
            id_, make, origin, direction, distance != nullptr, normal != nullptr));
    }
};

class ShapeProxy final
    : public SnapshotProxy<CoreNode::Snapshot_Shape, CSnapshot_Shape, ObjectKind::kShapeSnapshot> {
  public:
    using SnapshotProxy::SnapshotProxy;
    using Real = CSnapshot_Shape;
    using enum Operation;

    int GetCurveCount() override { return Pass<CSnapshot_Shape_GetCurveCount>(); }
    int GetCurve() override { return Pass<CSnapshot_Shape_GetCurve>(); }
    void SetCurve(int index) override { Pass<CSnapshot_Shape_SetCurve>(index); }
    double GetCurveLength() override { return Pass<CSnapshot_Shape_GetCurveLength>(); }
    std::array<double, 3> GetCurvePoint(double parameter) override {
        return Pass<CSnapshot_Shape_GetCurvePoint>(parameter);
    }
    std::array<double, 3> GetCurveTangent(double parameter) override {
        return Pass<CSnapshot_Shape_GetCurveTangent>(parameter);
    }
};

// The snapshots of one kind of a node.
template <class Lent>
class ProxyPool {
  public:
    // Room for one that is not known yet, so that there is a proxy for whatever is lent. False: no
    // memory for it.
    bool MakeRoom(Scribe& scribe, std::mutex& mutex) noexcept try {
        if (!proxies_.empty() && proxies_.back()->IsFree()) return true;
        const std::lock_guard lock(mutex);
        proxies_.push_back(std::make_unique<Lent>(scribe));
        return true;
    } catch (...) {
        return false;
    }

    Lent& Of(typename Lent::Real* real) {
        for (auto proxy = proxies_.rbegin(); proxy != proxies_.rend(); ++proxy)
            if ((*proxy)->StandsFor(real)) return **proxy;
        proxies_.back()->StandFor(real);
        return *proxies_.back();
    }

    template <class Visit>
    void ForEach(const Visit& visit) const {
        for (const auto& proxy : proxies_)
            visit(*proxy);
    }

  private:
    std::vector<std::unique_ptr<Lent>> proxies_;
};

}  // namespace recorder
