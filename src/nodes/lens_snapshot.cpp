#include "nodes/lens_snapshot.h"

#include <memory>

#include "core_link/core_answer.h"
#include "measures/host_clock.h"
#include "objects/object_kinds.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kDegreesPerRadian = 57.29577951308232;

// The host's numbers of what a field of view is measured across.
constexpr int kAcrossWidth = 0;
constexpr int kAcrossDiagonal = 2;

}  // namespace

CMAXNode::CMAXSnapshot_Lens::CMAXSnapshot_Lens(CMAXNode& lender) {
    node = &lender;
}

void CMAXNode::CMAXSnapshot_Lens::Acquire(const ShownObject& camera, double time) {
    acquired = true;
    hostObject = camera;
    ticks = SnapshotTicks(time);
    seconds = time;
}

void CMAXNode::CMAXSnapshot_Lens::LoseNode() {
    node = nullptr;
    hostObject = {};
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
        if (!AsCamera(object.Get())) return nullptr;
        CMAXSnapshot_Lens& snapshot =
            lensPool.FindFree([this] { return std::make_unique<CMAXSnapshot_Lens>(*this); });
        snapshot.Acquire(object, time);
        return &snapshot;
    });
}

void CMAXNode::ReleaseLensSnapshot(TVL::CSnapshot_Lens* snapshot) {
    if (snapshot) static_cast<CMAXSnapshot_Lens*>(snapshot)->Release();
}
