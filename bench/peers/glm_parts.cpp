// A take by glm: both keys brought into the world and taken apart, what lies between them put
// together again. The keys need no search: each time is between the next two.

#define GLM_ENABLE_EXPERIMENTAL
#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/gtx/matrix_decompose.hpp>

#include "bench/evaluation_work.h"

namespace {

// Columns there are rows here.
glm::mat4 ToGlm(const Matrix3& matrix) {
    glm::mat4 columns(1);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            columns[row][column] = matrix.m[row][column];
    }
    return columns;
}

Matrix3 ToHost(const glm::mat4& columns) {
    Matrix3 pose;
    for (int row = 0; row < 4; ++row)
        pose.SetRow(row, {columns[row][0], columns[row][1], columns[row][2]});
    return pose;
}

struct Parts {
    explicit Parts(const glm::mat4& matrix) {
        glm::vec3 skew;
        glm::vec4 perspective;
        glm::decompose(matrix, scale, rotation, translation, skew, perspective);
    }
    glm::vec3 scale;
    glm::quat rotation;
    glm::vec3 translation;
};

glm::mat4 MatrixBetween(const glm::mat4& left, const glm::mat4& right, float fraction) {
    const Parts from(left);
    const Parts to(right);
    const glm::mat4 moved =
        glm::translate(glm::mat4(1), glm::mix(from.translation, to.translation, fraction));
    return glm::scale(moved * glm::mat4_cast(glm::slerp(from.rotation, to.rotation, fraction)),
                      glm::mix(from.scale, to.scale, fraction));
}

void EvaluateInNewBrackets(benchmark::State& state) {
    const std::vector<TimeValue> times = TimesInNewBrackets();
    const glm::mat4 parent = ToGlm(ParentOfTake());
    std::vector<glm::mat4> keys;
    for (std::int64_t i = 0; i < kKeysOfTake; ++i)
        keys.push_back(ToGlm(PoseOfKey(i)));
    const auto poseAt = [&](std::size_t i) {
        return MatrixBetween(parent * keys[i], parent * keys[i + 1],
                             static_cast<float>(FractionAt(times[i])));
    };
    MeasurePeer(state, times, poseAt, ToHost);
}

BENCHMARK(EvaluateInNewBrackets)->Name("evaluate in new brackets/glm");

}  // namespace
