#include "headless/control/factory.h"

#include "headless/control/linear_float.h"
#include "headless/control/position_rotation_scale.h"

namespace headless {

Control* NewControl(SClass_ID superClass, Class_ID classId) {
    if (superClass == CTRL_FLOAT_CLASS_ID && classId == kLinearFloatClassId) return new LinearFloat;
    if (superClass == CTRL_MATRIX3_CLASS_ID && classId == kPositionRotationScaleClassId)
        return new PositionRotationScale;
    return nullptr;
}

}  // namespace headless
