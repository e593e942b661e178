#include <algorithm>
#include <cmath>
#include <utility>

#include "headless/primitives.h"
#include "objects/own_classes.h"
#include "storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kCurveChunk = 1;  // one for each curve

float LengthOf(const Polyline& points) {
    float length = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        length += Length(points[i] - points[i - 1]);
    return length;
}

Point3 Between(const Point3& from, const Point3& to, float part) {
    return from + (to - from) * part;
}

// The parameter counts segments, all of them alike.
Point3 AtSegment(const Polyline& points, float parameter) {
    const float place = parameter * static_cast<float>(points.size() - 1);
    const auto segment = std::min(static_cast<std::size_t>(place), points.size() - 2);
    return Between(points[segment], points[segment + 1], place - static_cast<float>(segment));
}

// The parameter is the part of the whole length that lies before the point.
Point3 AtLength(const Polyline& points, float parameter) {
    float left = parameter * LengthOf(points);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const float length = Length(points[i] - points[i - 1]);
        if (left <= length && length > 0) return Between(points[i - 1], points[i], left / length);
        left -= length;
    }
    return points.back();
}

class Polylines final : public ShapeObject {
  public:
    explicit Polylines(std::vector<Polyline> curves) : curves_(std::move(curves)) {}

    int NumberOfCurves() override { return static_cast<int>(curves_.size()); }

    float LengthOfCurve(TimeValue, int curve) override {
        return Exists(curve) ? LengthOf(At(curve)) : 0;
    }

    Point3 InterpCurve3D(TimeValue, int curve, float parameter, int parameterType) override {
        if (!Exists(curve) || At(curve).empty()) return {};
        const Polyline& points = At(curve);
        if (points.size() == 1) return points.front();
        const float inside = std::isnan(parameter) ? 0 : std::clamp(parameter, 0.0F, 1.0F);
        return parameterType == PARAM_NORMALIZED ? AtLength(points, inside)
                                                 : AtSegment(points, inside);
    }

    Class_ID ClassID() override { return kPolylinesClassId; }
    void GetClassName(HostString& name) override { name = GetObjectName(); }
    HostString GetObjectName() override { return "Line"; }
    void DeleteThis() override { delete this; }

    void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) override {
        box = Box3();
        for (const Polyline& curve : curves_) {
            for (const Point3& p : curve)
                box += p;
        }
    }

    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Polylines(curves_);
        BaseClone(this, copy, remap);
        return copy;
    }

    IOResult Save(ISave* save) override {
        for (const Polyline& curve : curves_)
            SaveTable(*save, kCurveChunk, curve);
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        curves_.clear();
        return LoadChunks(*load, [&](std::uint16_t id) {
            return id == kCurveChunk && LoadTable(*load, curves_.emplace_back());
        });
    }

  private:
    bool Exists(int curve) const { return curve >= 0 && curve < static_cast<int>(curves_.size()); }
    const Polyline& At(int curve) const { return curves_[static_cast<std::size_t>(curve)]; }

    std::vector<Polyline> curves_;
};

}  // namespace

ShapeObject* NewPolylines(std::vector<Polyline> curves) {
    return new Polylines(std::move(curves));
}

}  // namespace headless
