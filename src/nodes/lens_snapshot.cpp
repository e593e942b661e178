#include "core_link/core_answer.h"
#include "measures/host_clock.h"
#include "nodes/snapshots.h"
#include "objects/host_objects.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kDegreesPerRadian = 57.29577951308232;

// The host's numbers of what a field of view is measured across.
constexpr int kAcrossWidth = 0;
constexpr int kAcrossDiagonal = 2;

}  // namespace

void CMAXNode::CMAXSnapshot_Lens::Acquire(CMAXNode&, const ShownObject& camera, double time) {
    hostObject = camera;
    ticks = SnapshotTicks(time);
    seconds = time;
}

void CMAXNode::CMAXSnapshot_Lens::SetFieldOfView(double degrees) {
    AnswerCore("SetFieldOfView", [&] {
        if (CameraObject* camera = AsCamera(hostObject.Get()))
            camera->SetFOV(ticks, static_cast<float>(degrees * kRadiansPerDegree));
    });
}

double CMAXNode::CMAXSnapshot_Lens::GetFieldOfView() {
    return AnswerCore("GetFieldOfView", [&]() -> double {
        CameraObject* const camera = AsCamera(hostObject.Get());
        if (!camera) return 0;
        Interval valid(0, 0);
        return static_cast<double>(camera->GetFOV(ticks, valid)) * kDegreesPerRadian;
    });
}

int CMAXNode::CMAXSnapshot_Lens::GetFieldOfViewType() {
    return AnswerCore("GetFieldOfViewType", [&] {
        CameraObject* const camera = AsCamera(hostObject.Get());
        return camera ? camera->GetFOVType() : kAcrossWidth;
    });
}

void CMAXNode::CMAXSnapshot_Lens::SetFieldOfViewType(int type) {
    AnswerCore("SetFieldOfViewType", [&] {
        if (type < kAcrossWidth || type > kAcrossDiagonal) return;
        if (CameraObject* camera = AsCamera(hostObject.Get())) camera->SetFOVType(type);
    });
}

void CMAXNode::CMAXSnapshot_Lens::SetTargetDistance(double hostUnits) {
    AnswerCore("SetTargetDistance", [&] {
        if (CameraObject* camera = AsCamera(hostObject.Get()))
            camera->SetTDist(ticks, static_cast<float>(hostUnits));
    });
}

double CMAXNode::CMAXSnapshot_Lens::GetTargetDistance() {
    return AnswerCore("GetTargetDistance", [&]() -> double {
        CameraObject* const camera = AsCamera(hostObject.Get());
        if (!camera) return 0;
        Interval valid(0, 0);
        return static_cast<double>(camera->GetTDist(ticks, valid));
    });
}

TVL::CSnapshot_Lens* CMAXNode::AcquireLensSnapshot(double time) {
    return AnswerCore("AcquireLensSnapshot", [&]() -> TVL::CSnapshot_Lens* {
        const ShownObject object(hostNode);
        return AsCamera(object.Get()) ? lensPool.Lend(*this, object, time) : nullptr;
    });
}

void CMAXNode::ReleaseLensSnapshot(TVL::CSnapshot_Lens* snapshot) {
    lensPool.TakeBack(snapshot);
}
