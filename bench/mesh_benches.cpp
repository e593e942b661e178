// A mesh's road out of the host and in again, for each face, in two sizes: a growth near 1 says
// that the time grows with the mesh and no faster.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "bench/bench_world.h"
#include "bench/meter.h"
#include "headless/primitives.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"

namespace {

// A node on an object that becomes a triangle mesh, as a Core reaches it.
std::unique_ptr<CMAXNode> SphereNode(std::int64_t faces) {
    // A sphere has about the square of its segments.
    const int segments = static_cast<int>(std::sqrt(static_cast<double>(faces))) + 1;
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

void Convert(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(state.range(0));
    const std::int64_t faces = LentMesh(*node)->GetMesh().FaceCount();
    Meter meter(state, faces);
    for (auto _ : state) {
        meter.Aside([] { ConvertedMeshes().Empty(); });
        const LentMesh mesh(*node);
    }
}

void Get(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(state.range(0));
    const LentMesh mesh(*node);
    Meter meter(state, mesh->GetMesh().FaceCount());
    for (auto _ : state)
        benchmark::DoNotOptimize(mesh->GetMesh());
}

void Set(benchmark::State& state) {
    BenchWorld world;
    const std::unique_ptr<CMAXNode> node = SphereNode(state.range(0));
    const LentMesh mesh(*node);
    const TVL::CMesh given = mesh->GetMesh();
    Meter meter(state, given.FaceCount());
    for (auto _ : state)
        mesh->SetMesh(given);
}

void FaceCounts(benchmark::internal::Benchmark* bench) {
    bench->Arg(10'000)->Arg(1'000'000);
}

BENCHMARK(Convert)->Name("convert a face/ours")->Apply(FaceCounts);
BENCHMARK(Get)->Name("read a face/ours")->Apply(FaceCounts);
BENCHMARK(Set)->Name("write a face/ours")->Apply(FaceCounts);

}  // namespace
