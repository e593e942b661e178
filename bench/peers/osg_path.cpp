// A take by OpenSceneGraph: the control points of an osg::AnimationPath, taken apart beforehand,
// and already in the world.

#include <osg/AnimationPath>

#include "bench/evaluation_work.h"

namespace {

using Point = osg::AnimationPath::ControlPoint;

Point PointOf(const Matrix3& world) {
    osg::Matrixd matrix;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            matrix(row, column) = static_cast<double>(world.m[row][column]);
    }
    osg::Vec3d position;
    osg::Quat rotation;
    osg::Vec3d scale;
    osg::Quat scaleOrientation;
    matrix.decompose(position, rotation, scale, scaleOrientation);
    return {position, rotation, scale};
}

osg::Matrixf MatrixBetween(const Point& left, const Point& right, TimeValue t) {
    Point between;
    between.interpolate(FractionAt(t), left, right);
    osg::Matrixf matrix;
    between.getMatrix(matrix);
    return matrix;
}

Matrix3 ToHost(const osg::Matrixf& matrix) {
    Matrix3 pose;
    for (int row = 0; row < 4; ++row)
        pose.SetRow(row, {matrix(row, 0), matrix(row, 1), matrix(row, 2)});
    return pose;
}

void EvaluateInOneBracket(benchmark::State& state) {
    const std::vector<TimeValue> times = TimesInOneBracket();
    const Point left = PointOf(PoseOfKey(kMiddle) * ParentOfTake());
    const Point right = PointOf(PoseOfKey(kMiddle + 1) * ParentOfTake());
    const auto poseAt = [&](std::size_t i) { return MatrixBetween(left, right, times[i]); };
    MeasurePeer(state, times, poseAt, ToHost);
}

BENCHMARK(EvaluateInOneBracket)->Name("evaluate in one bracket/osg");

}  // namespace
