#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "tests/headless/host_world.h"

namespace {

using MeshRays = HostWorld;

// The nearest place from `origin`, which lies inside or outside, along a unit direction.
double FormulaDistance(const Point3& origin, const Point3& direction, double radius) {
    const double along = double{DotProd(origin, direction)};
    const double square = double{DotProd(origin, origin)} - along * along;
    const double half = std::sqrt(radius * radius - square);
    return -along - half >= 0 ? -along - half : -along + half;
}

TEST_F(MeshRays, HitASphereOfAMillionFacesWithinItsFacetsDistance) {
    constexpr int kSegments = 1024;
    constexpr float kRadius = 100;
    Object* const sphere = headless::NewSphere(kRadius, kSegments);
    auto* const converted = static_cast<TriObject*>(sphere->ConvertToType(0, kTriObjectClassId));
    const Mesh& mesh = converted->GetMesh();
    EXPECT_GT(mesh.getNumFaces(), 1'000'000);
    // A facet lies below the sphere by at most this in each of its two directions.
    const double sagitta = double{kRadius} * (1 - std::cos(std::numbers::pi / kSegments));

    std::mt19937 random(7);
    std::normal_distribution<float> spread;
    for (int i = 0; i < 16; ++i) {
        const float from = i % 2 == 0 ? 3 * kRadius : kRadius / 2;
        const Point3 origin = Normalize({spread(random), spread(random), spread(random)}) * from;
        const Point3 aim = Normalize({spread(random), spread(random), spread(random)}) *
                           (i < 4 ? 0 : kRadius / 2);  // the first through the centre
        const Point3 direction = Normalize(aim - origin);
        float at = 0;
        Point3 normal;
        ASSERT_NE(mesh.IntersectRay({origin, direction}, at, normal), 0) << i;
        const Point3 place = origin + direction * at;
        // The way through the shell between facets and sphere is longer where it is slanted.
        const double slant = std::abs(double{DotProd(Normalize(place), direction)});
        EXPECT_NEAR(double{at}, FormulaDistance(origin, direction, double{kRadius}),
                    2 * sagitta / slant + 1e-4)
            << i;
        EXPECT_GT(DotProd(normal, Normalize(place)), 0.9999F);
    }
    // Through a pole, where many faces share one vertex.
    float at = 0;
    Point3 normal;
    EXPECT_NE(mesh.IntersectRay({{0, 0, 300}, {0, 0, -2}}, at, normal), 0);
    EXPECT_EQ(at, 100);
    converted->DeleteThis();
    sphere->DeleteMe();
}

TEST_F(MeshRays, FindTheNearestFaceFromEitherSideAndPassOverWhatIsNone) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    Mesh mesh;
    float at = -5;
    Point3 normal{1, 2, 3};
    EXPECT_EQ(mesh.IntersectRay({{0, 0, 9}, {0, 0, -1}}, at, normal), 0);

    mesh.setNumVerts(7);
    const Point3 places[] = {{0, 0, 0}, {8, 0, 0}, {0, 8, 0},   {0, 0, 2},
                             {8, 0, 2}, {0, 8, 2}, {kNaN, 0, 5}};
    for (int i = 0; i < 7; ++i)
        mesh.setVert(i, places[i]);
    mesh.setNumFaces(6);
    const int faces[6][3] = {{0, 1, 6}, {1, 4, 4}, {0, 1, 99}, {3, 4, -1}, {0, 2, 1}, {3, 4, 5}};
    for (std::size_t i = 0; i < 6; ++i)
        mesh.faces[i].setVerts(faces[i][0], faces[i][1], faces[i][2]);

    struct Case {
        Ray ray;
        float at;
        float normalUp;
    };
    for (const Case& hit : {Case{{{1, 1, 9}, {0, 0, -1}}, 7, 1},
                            {{{1, 1, -9}, {0, 0, 3}}, 3, -1},
                            {{{1, 1, 1}, {0, 0, -1}}, 1, -1},
                            {{{1, 1, 2}, {0, 0, 1}}, 0, 1},
                            {{{4, 4, 9}, {0, 0, -1}}, 7, 1}}) {
        EXPECT_NE(mesh.IntersectRay(hit.ray, at, normal), 0);
        EXPECT_EQ(at, hit.at);
        EXPECT_EQ(normal, Point3(0, 0, hit.normalUp));
    }
    at = -5;
    normal = {1, 2, 3};
    for (const Ray& miss : {Ray{{1, 1, 9}, {0, 0, 1}},
                            {{5, 5, 9}, {0, 0, -1}},
                            {{1, 1, 9}, {0, 0, 0}},
                            {{1, 1, 1}, {1, 0, 0}},
                            {{8, 0, 1}, {0, 1, 0}},
                            {{kNaN, 1, 9}, {0, 0, -1}},
                            {{1, 1, 9}, {0, kNaN, -1}},
                            {{1, 1, kInfinity}, {0, 0, -1}},
                            {{1, 1, 9}, {0, 0, -kInfinity}}}) {
        EXPECT_EQ(mesh.IntersectRay(miss, at, normal), 0);
    }
    EXPECT_EQ(at, -5);
    EXPECT_EQ(normal, Point3(1, 2, 3));
}

}  // namespace
