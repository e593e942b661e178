#pragma once

#include <cstdint>
#include <cstring>

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

// The way from one pose, which has to outlast it, to another: rotation the shorter way round,
// translation and the lengths of the rows in straight lines.
class PosePath {
  public:
    PosePath() = default;
    PosePath(const Pose& left, const Pose& right);

    // The matrix at `fraction` of the way, its rows at right angles.
    Matrix3 At(float fraction) const;

  private:
    const Pose* left_ = nullptr;
    RotationVector turn_;
    double offset_[3] = {};
    float growth_[3] = {};
};

// What an evaluation leaves to the next one: the path between two neighbouring keys of a table, in
// the space of a parent. It is good for that edition of the keys and that parent, to the last bit
// of both; with anything else it is worked out anew. For another bracket of the same keys and
// parent, so is what belongs to a key that has not been met. It belongs to the table's own
// controller, and is no part of its value.
class KeptPath {
  public:
    KeptPath() = default;
    KeptPath(const KeptPath&) = delete;
    KeptPath& operator=(const KeptPath&) = delete;

    // The value at `fraction` of the way between two keys of `table`, relative to `parent`.
    Matrix3 At(float fraction, const KeyTable<Matrix3>& table, const KeyBracket<Matrix3>& around,
               const Matrix3& parent);

  private:
    static constexpr std::int32_t kNone = -1;

    bool IsFor(const KeyTable<Matrix3>& table, const Matrix3& parent) const {
        return edition_ == table.keys.Edition() &&
               std::memcmp(&parent_, &parent, sizeof parent) == 0;
    }
    void Begin(const KeyTable<Matrix3>& table, const Matrix3& parent);
    void Enter(const KeyBracket<Matrix3>& around);

    // Of the key at `index`, in the parent's space.
    const Pose& PoseOfKey(std::int32_t index, const TarvoKey<Matrix3>& key);

    std::uint64_t edition_ = 0;  // of the keys; none
    Matrix3 parent_;
    Matrix3 fromParent_;

    // Two neighbouring keys, the one with the even index first.
    Pose poses_[2];
    std::int32_t keys_[2] = {kNone, kNone};  // their indices

    std::int32_t left_ = kNone;  // the index of the key that path_ begins with
    PosePath path_;
};
