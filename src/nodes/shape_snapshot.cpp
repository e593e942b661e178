#include <algorithm>
#include <cmath>

#include "core_link/core_answer.h"
#include "measures/host_clock.h"
#include "nodes/snapshots.h"
#include "objects/host_objects.h"

namespace {

// The stretch of a curve over which its direction is taken, as a part of its length.
constexpr double kTangentStretch = 0.00001;
constexpr double kHalfStretch = 0.000005;
constexpr double kLastStretchStart = 0.99999;

// Of a curve that leads nowhere.
constexpr std::array<double, 3> kNoDirection{0, 1, 0};

// Centred on the parameter, pushed inward at both ends.
double StretchStart(double parameter) {
    double start = parameter - kHalfStretch;
    if (start < 0) start = 0;
    if (start + kTangentStretch >= 1.0) start = kLastStretchStart;
    return start;
}

}  // namespace

void CMAXNode::CMAXSnapshot_Shape::Acquire(CMAXNode&, const ShownObject& shape, double time) {
    hostObject = shape;
    ticks = SnapshotTicks(time);
    seconds = time;
}

int CMAXNode::CMAXSnapshot_Shape::Count() const {
    ShapeObject* const shape = AsShape(hostObject.Get());
    return shape ? shape->NumberOfCurves() : 0;
}

std::array<double, 3> CMAXNode::CMAXSnapshot_Shape::Point(double parameter) const {
    ShapeObject* const shape = ShapeWithCurve();
    if (!shape) return {};
    const Point3 point =
        shape->InterpCurve3D(ticks, curve, static_cast<float>(parameter), PARAM_NORMALIZED);
    return {point.x, point.y, point.z};
}

int CMAXNode::CMAXSnapshot_Shape::GetCurveCount() {
    return AnswerCore("GetCurveCount", [&] { return Count(); });
}

void CMAXNode::CMAXSnapshot_Shape::SetCurve(int index) {
    AnswerCore("SetCurve", [&] { curve = std::max(std::min(index, Count() - 1), 0); });
}

double CMAXNode::CMAXSnapshot_Shape::GetCurveLength() {
    return AnswerCore("GetCurveLength", [&] {
        ShapeObject* const shape = ShapeWithCurve();
        return shape ? static_cast<double>(shape->LengthOfCurve(ticks, curve)) : 0;
    });
}

std::array<double, 3> CMAXNode::CMAXSnapshot_Shape::GetCurvePoint(double parameter) {
    return AnswerCore("GetCurvePoint", [&] { return Point(parameter); });
}

std::array<double, 3> CMAXNode::CMAXSnapshot_Shape::GetCurveTangent(double parameter) {
    return AnswerCore("GetCurveTangent", kNoDirection, [&] {
        const double start = StretchStart(parameter);
        const std::array<double, 3> from = Point(start);
        const std::array<double, 3> to = Point(start + kTangentStretch);
        const std::array<double, 3> way{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
        const double length = std::sqrt(way[0] * way[0] + way[1] * way[1] + way[2] * way[2]);
        if (length == 0.0) return kNoDirection;
        const double scale = 1 / length;
        return std::array<double, 3>{way[0] * scale, way[1] * scale, way[2] * scale};
    });
}

// A reused snapshot can have a curve from a time at which its node had more of them.
ShapeObject* CMAXNode::CMAXSnapshot_Shape::ShapeWithCurve() const {
    ShapeObject* const shape = AsShape(hostObject.Get());
    return shape && curve < shape->NumberOfCurves() ? shape : nullptr;
}

TVL::CSnapshot_Shape* CMAXNode::AcquireShapeSnapshot(double time) {
    return AnswerCore("AcquireShapeSnapshot", [&]() -> TVL::CSnapshot_Shape* {
        const ShownObject object(hostNode);
        return AsShape(object.Get()) ? shapePool.Lend(*this, object, time) : nullptr;
    });
}

void CMAXNode::ReleaseShapeSnapshot(TVL::CSnapshot_Shape* snapshot) {
    shapePool.TakeBack(snapshot);
}
