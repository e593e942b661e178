#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "headless/objects/node_drawing.h"
#include "headless/objects/own_classes.h"
#include "headless/objects/spline_lines.h"
#include "headless/objects/spline_measure.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

// One chunk for each spline.
constexpr std::uint16_t kStraightLinesChunk = 1;  // of an open one of straight lines: places alone
constexpr std::uint16_t kSplineChunk = 2;

constexpr float kTubeRadius = 0.005F;  // of the shape's diagonal

bool IsCorner(const Knot& knot) {
    return knot.in == knot.place && knot.out == knot.place;
}

class Splines final : public ShapeObject {
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
        const Box3 box = BoundsOf(Lines());
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

    int Display(TimeValue t, INode* node, ViewExp* view, int) override {
        return DisplayLines(Lines(), t, node, view);
    }
    int HitTest(TimeValue t, INode* node, int type, int crossing, int flags, IPoint2* point,
                ViewExp* view) override {
        return HitTestLines(Lines(), {t, node, type, crossing, flags, point, view});
    }
    void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) override {
        box = BoundsOf(Lines());
    }

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

    std::vector<Line> Lines() const {
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
