#include "headless/control/transform_packet.h"

namespace headless {
namespace {

Matrix3 InAxes(const SetXFormPacket& packet, const Matrix3& local, const Matrix3& change) {
    return local * packet.tmParent * Inverse(packet.tmAxis) * change * packet.tmAxis *
           Inverse(packet.tmParent);
}

}  // namespace

Matrix3 Apply(const SetXFormPacket& packet, const Matrix3& local) {
    Matrix3 change;
    switch (packet.command) {
        case XFORM_MOVE:
            change.SetTranslate(packet.p);
            return InAxes(packet, local, change);
        case XFORM_ROTATE:
            change.SetRotate(packet.q);
            return InAxes(packet, local, change);
        case XFORM_SCALE:
            change.Scale(packet.p);
            return InAxes(packet, local, change);
        case XFORM_SET:
            return local * packet.tmAxis * Inverse(packet.tmParent);
        default:
            return local;
    }
}

}  // namespace headless
