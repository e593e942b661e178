#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <utility>

#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/objects/spline_measure.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

// One chunk for each spline.
constexpr std::uint16_t kStraightLinesChunk = 1;  // of an open one of straight lines: places alone
constexpr std::uint16_t kSplineChunk = 2;

constexpr float kTubeRadius = 0.005F;  // of the shape's diagonal

constexpr int kTubeSides = 6;

bool IsCorner(const Knot& knot) {
    return knot.in == knot.place && knot.out == knot.place;
}

// Some direction across another; both have length 1.
Point3 Across(const Point3& direction) {
    const Point3 aside = std::abs(direction.z) < 0.9F ? Point3(0, 0, 1) : Point3(1, 0, 0);
    return Normalize(CrossProd(aside, direction));
}

// Along the line at one of its places: the middle of what comes and what goes on.
Point3 DirectionAt(const std::vector<Point3>& line, std::size_t i) {
    const Point3 in = i == 0 ? Point3() : Normalize(line[i] - line[i - 1]);
    const Point3 out = i + 1 == line.size() ? Point3() : Normalize(line[i + 1] - line[i]);
    const Point3 sum = in + out;
    return sum.Length() > 0 ? Normalize(sum) : Across(in);  // where the line turns back
}

// Flat, and without edges that show.
Face& AddFace(Mesh& mesh, int a, int b, int c) {
    Face& face = mesh.faces.emplace_back();
    face.setVerts(a, b, c);
    return face;
}

void AddSide(Mesh& mesh, int a, int b, int c) {
    Face& face = AddFace(mesh, a, b, c);
    face.setEdgeVisFlags(1, 1, 0);
    face.setSmGroup(1);
}

void AddRing(Mesh& mesh, const Point3& centre, const Point3& direction, const Point3& first,
             float radius) {
    const Point3 second = CrossProd(direction, first);
    for (int side = 0; side < kTubeSides; ++side) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(side) /
                            static_cast<float>(kTubeSides);
        mesh.verts.push_back(centre + first * (radius * std::cos(angle)) +
                             second * (radius * std::sin(angle)));
    }
}

// Two faces for each side of the stretch from the ring that starts at vertex `ring` to the next,
// smooth around the tube; the diagonal between them, the last edge of both, does not show.
void AddStretch(Mesh& mesh, int ring) {
    for (int side = 0; side < kTubeSides; ++side) {
        const int a = ring + side;
        const int b = ring + (side + 1) % kTubeSides;
        AddSide(mesh, a + kTubeSides, a, b);
        AddSide(mesh, b, b + kTubeSides, a + kTubeSides);
    }
}

void AddCaps(Mesh& mesh, int firstRing, int lastRing) {
    for (int side = 1; side + 1 < kTubeSides; ++side) {
        AddFace(mesh, firstRing, firstRing + side + 1, firstRing + side);
        AddFace(mesh, lastRing, lastRing + side, lastRing + side + 1);
    }
}

// Adds a thin tube along the line, closed at its ends. From ring to ring the direction of the first
// side turns no more than the line does.
void AddTube(const std::vector<Point3>& line, float radius, Mesh& mesh) {
    if (line.size() < 2) return;
    const int firstRing = mesh.getNumVerts();
    Point3 first = Across(DirectionAt(line, 0));
    for (std::size_t i = 0; i < line.size(); ++i) {
        const Point3 direction = DirectionAt(line, i);
        const Point3 carried = first - direction * DotProd(first, direction);
        first = carried.Length() > 0 ? Normalize(carried) : Across(direction);
        AddRing(mesh, line[i], direction, first, radius);
        if (i > 0) AddStretch(mesh, mesh.getNumVerts() - 2 * kTubeSides);
    }
    AddCaps(mesh, firstRing, mesh.getNumVerts() - kTubeSides);
}

class Splines final : public Visible<ShapeObject, std::vector<Line>> {
  public:
    explicit Splines(std::vector<Spline> splines) : splines_(std::move(splines)) { FreeCaches(); }

    int NumberOfCurves() override { return static_cast<int>(splines_.size()); }

    float LengthOfCurve(TimeValue, int curve) override {
        if (!Exists(curve)) return 0;
        constexpr double kMost = std::numeric_limits<float>::max();
        return static_cast<float>(std::min(Measure(curve).Length(), kMost));
    }

    Point3 InterpCurve3D(TimeValue, int curve, float parameter, int parameterType) override {
        if (!Exists(curve) || At(curve).knots.empty()) return {};
        const Spline& spline = At(curve);
        if (SegmentCount(spline) == 0) return spline.knots.front().place;
        const double inside = std::isnan(parameter) ? 0 : std::clamp(parameter, 0.0F, 1.0F);
        const SplinePlace place =
            parameterType == PARAM_NORMALIZED
                ? Measure(curve).PlaceAt(spline, inside * Measure(curve).Length())
                : AtSegment(SegmentCount(spline), inside);
        return SegmentOf(spline, place.segment).At(place.u);
    }

    int CanConvertToType(Class_ID type) override {
        return type == kTriObjectClassId || ShapeObject::CanConvertToType(type) != 0 ? 1 : 0;
    }

    Object* ConvertToType(TimeValue t, Class_ID type) override {
        if (type != kTriObjectClassId) return ShapeObject::ConvertToType(t, type);
        TriObject* object = CreateNewTriObject();
        const Box3 box = BoundsOf(SeenAt(t, nullptr));
        const float radius = box.IsEmpty() ? 0 : Length(box.pmax - box.pmin) * kTubeRadius;
        for (const Spline& spline : splines_)
            AddTube(LinesAlong(spline), radius, object->GetMesh());
        return object;
    }

    Class_ID ClassID() override { return kSplinesClassId; }
    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Line"; }
    void DeleteThis() override { delete this; }

    // What is measured is measured again when it is asked for.
    void FreeCaches() override { measures_.assign(splines_.size(), std::nullopt); }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Splines(splines_);
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        for (const Spline& spline : splines_)
            SaveSpline(*save, spline);
        return IO_OK;
    }

    // Splines that are not whole leave none.
    IOResult Load(ILoad* load) override {
        splines_.clear();
        const IOResult result = LoadChunks(*load, [&](std::uint16_t id) {
            return LoadSpline(*load, id, splines_.emplace_back());
        });
        if (result != IO_OK) splines_.clear();
        FreeCaches();
        return result;
    }

  private:
    bool Exists(int curve) const { return curve >= 0 && curve < static_cast<int>(splines_.size()); }
    const Spline& At(int curve) const { return splines_[static_cast<std::size_t>(curve)]; }

    const SplineMeasure& Measure(int curve) {
        auto& measure = measures_[static_cast<std::size_t>(curve)];
        if (!measure) measure.emplace(At(curve));
        return *measure;
    }

    // The parameter counts segments, all of them alike.
    static SplinePlace AtSegment(std::size_t segments, double parameter) {
        const double place = parameter * static_cast<double>(segments);
        const std::size_t segment = std::min(static_cast<std::size_t>(place), segments - 1);
        return {segment, place - static_cast<double>(segment)};
    }

    std::vector<Line> SeenAt(TimeValue, INode*) override {
        std::vector<Line> lines;
        for (const Spline& spline : splines_)
            AddLines(LinesAlong(spline), lines);
        return lines;
    }

    static void SaveSpline(ISave& save, const Spline& spline) {
        if (!spline.isClosed && std::ranges::all_of(spline.knots, IsCorner)) {
            std::vector<Point3> places;
            for (const Knot& knot : spline.knots)
                places.push_back(knot.place);
            SaveTable(save, kStraightLinesChunk, places);
            return;
        }
        save.BeginChunk(kSplineChunk);
        SaveValue(save, std::uint32_t{spline.isClosed});
        SaveValue(save, static_cast<std::uint32_t>(spline.knots.size()));
        SaveItems(save, spline.knots);
        save.EndChunk();
    }

    static bool LoadSpline(ILoad& load, std::uint16_t id, Spline& spline) {
        if (id == kStraightLinesChunk) {
            std::vector<Point3> places;
            if (!LoadTable(load, places)) return false;
            for (const Point3& place : places)
                spline.knots.push_back(Corner(place));
            return true;
        }
        std::uint32_t isClosed = 0;
        if (id != kSplineChunk || !LoadValue(load, isClosed) || isClosed > 1) return false;
        spline.isClosed = isClosed == 1;
        return LoadTable(load, spline.knots);
    }

    std::vector<Spline> splines_;
    std::vector<std::optional<SplineMeasure>> measures_;  // of each spline, once it was asked for
};

}  // namespace

ShapeObject* NewSplines(std::vector<Spline> splines) {
    return new Splines(std::move(splines));
}

}  // namespace headless
