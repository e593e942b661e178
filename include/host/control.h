#pragma once

#include "host/matrix3.h"
#include "host/reference.h"

enum GetSetMethod { CTRL_RELATIVE = 0, CTRL_ABSOLUTE = 1 };

inline constexpr std::uint32_t XFORM_MOVE = 0;
inline constexpr std::uint32_t XFORM_ROTATE = 1;
inline constexpr std::uint32_t XFORM_SCALE = 2;
inline constexpr std::uint32_t XFORM_SET = 3;

// The value that SetValue of a matrix controller takes: what to do, the parent's matrix, and the
// axis system in which to do it (for XFORM_SET the new world matrix).
struct SetXFormPacket {
    std::uint32_t command = XFORM_SET;
    Matrix3 tmParent;
    Matrix3 tmAxis;
    Point3 p;
    Quat q;
};

// Gives a value over time. What `value` points to is a float, a Matrix3, or for SetValue of a
// matrix controller a SetXFormPacket, by the controller's super class.
class HOST_API Control : public ReferenceTarget {
  public:
    virtual void Copy(Control* from);

    // The world transform of the node stays while its parent changes from `oldParent` to
    // `newParent`; no record is put, the host's own brings all back. Non-zero: keys were adapted.
    virtual int ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent,
                              const Matrix3& world);

    // CTRL_ABSOLUTE writes the value, CTRL_RELATIVE combines it with what `value` holds (a matrix
    // controller finds the parent's matrix there in both cases). `valid` is narrowed.
    virtual void GetValue(TimeValue t, void* value, Interval& valid,
                          GetSetMethod method = CTRL_ABSOLUTE) = 0;
    virtual void SetValue(TimeValue t, void* value, int commit = 1,
                          GetSetMethod method = CTRL_ABSOLUTE) = 0;

    ~Control() override;
};
