#pragma once

#include <cstdint>

#include "controllers/key_table.h"
#include "host/matrix3.h"
#include "measures/quaternion.h"

// A matrix taken apart into what is interpolated.
struct Pose {
    Quaternion rotation;
    double translation[3] = {};
    float lengths[3] = {};  // of the rows
};

Pose PoseOf(const Matrix3& matrix);

// The way from one pose to another: rotation the shorter way round, translation and the lengths of
// the rows in straight lines.
struct PosePath {
    PosePath() = default;
    PosePath(const Pose& left, const Pose& right);

    // The matrix at `fraction` of the way, its rows at right angles.
    Matrix3 At(float fraction) const;

  private:
    Pose start_;
    RotationVector turn_;
    double offset_[3] = {};
    float growth_[3] = {};
};

// What an evaluation leaves to the next one: the path between two neighbouring keys of a table, in
// the space of a parent. It is good for that edition of the keys and that parent, to the last bit
// of both; with anything else it is worked out anew, as far as the keys have not been met. It
// belongs to the table's own controller, and is no part of its value.
class KeptPath {
  public:
    KeptPath() = default;
    KeptPath(const KeptPath&) = delete;
    KeptPath& operator=(const KeptPath&) = delete;

    // `around` is two keys of `table`.
    const PosePath& Between(const KeyTable<Matrix3>& table, const KeyBracket<Matrix3>& around,
                            const Matrix3& parent);

    // Of the parent that was given last.
    const Matrix3& FromParent() const { return fromParent_; }

  private:
    bool IsFor(const KeyTable<Matrix3>& table, const Matrix3& parent) const;

    std::uint64_t edition_ = 0;  // of the keys; none
    Matrix3 parent_;
    Matrix3 fromParent_;
    std::int32_t index_ = 0;  // of the left key
    Pose left_;
    Pose right_;
    PosePath path_;
};
