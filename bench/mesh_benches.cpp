// A mesh's road out of the host and in again, for each face. The peers are two sizes of the same
// mesh: a ratio near 1 says that the time grows with the mesh and no faster.

#include <benchmark/benchmark.h>

#include <memory>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "headless/primitives.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"

namespace {

// Segments of a sphere, which has about their square of faces.
constexpr int kTenThousand = 101;
constexpr int kMillion = 1001;

// A node on an object that becomes a triangle mesh, as a Core reaches it.
std::unique_ptr<CMAXNode> SphereNode(int segments) {
    Object* const sphere = headless::NewSphere(100, segments);
    return std::make_unique<CMAXNode>(nullptr, GetCOREInterface()->CreateObjectNode(sphere));
}

// A snapshot that goes back at its end.
class LentMesh {
  public:
    explicit LentMesh(TVL::CoreNode& node) : node_(node), mesh_(node.AcquireMeshSnapshot(0)) {}
    ~LentMesh() { node_.ReleaseMeshSnapshot(mesh_); }
    LentMesh(const LentMesh&) = delete;
    LentMesh& operator=(const LentMesh&) = delete;

    TVL::CSnapshot_Mesh* operator->() const { return mesh_; }

  private:
    TVL::CoreNode& node_;
    TVL::CSnapshot_Mesh* mesh_;
};

template <int kSegments>
void Convert(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(kSegments);
    const std::int64_t faces = LentMesh(*node)->GetMesh().FaceCount();
    Meter meter(state, faces);
    for (auto _ : state) {
        meter.Aside([] { ConvertedMeshes().Empty(); });
        const LentMesh mesh(*node);
    }
}

template <int kSegments>
void Get(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(kSegments);
    const LentMesh mesh(*node);
    Meter meter(state, mesh->GetMesh().FaceCount());
    for (auto _ : state)
        benchmark::DoNotOptimize(mesh->GetMesh());
}

template <int kSegments>
void Set(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(kSegments);
    const LentMesh mesh(*node);
    const TVL::CMesh given = mesh->GetMesh();
    Meter meter(state, given.FaceCount());
    for (auto _ : state)
        mesh->SetMesh(given);
}

BENCHMARK(Convert<kTenThousand>)->Name("convert a face/of 10,000");
BENCHMARK(Convert<kMillion>)->Name("convert a face/of a million");
BENCHMARK(Get<kTenThousand>)->Name("read a face/of 10,000");
BENCHMARK(Get<kMillion>)->Name("read a face/of a million");
BENCHMARK(Set<kTenThousand>)->Name("write a face/of 10,000");
BENCHMARK(Set<kMillion>)->Name("write a face/of a million");

}  // namespace
