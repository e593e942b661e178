#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "command/output.h"
#include "command/record.h"

namespace headless {
namespace {

const char* SameOrNot(bool identical) {
    return identical ? "identical" : "NOT identical";
}

double FurthestMetres(const RecordResult& result) {
    double furthest = 0;
    for (const replay::CaptureReport& capture : result.captures)
        furthest = std::max(furthest, capture.maxPositionErrorMetres);
    return furthest;
}

void PrintCapture(std::ostream& out, const replay::CaptureReport& capture) {
    const double seconds = static_cast<double>(capture.frames) * capture.frameSeconds;
    out << "Recorded " << capture.path << ": " << Counted(capture.joints, "joint") << ", "
        << Counted(capture.frames, "frame") << " (" << std::setprecision(1) << seconds
        << " s of motion)";
}

void PrintLift(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Lifted onto the ground: " << Counted(capture.liftedFrames, "frame") << ", by "
        << std::setprecision(1) << capture.maxLiftMetres * 100 << " cm at most\n";
}

void PrintLens(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Camera as written: field of view within " << std::setprecision(7)
        << capture.maxFieldOfViewErrorDegrees << " degrees, target distance within "
        << std::setprecision(4) << capture.maxTargetDistanceErrorMetres * 1000 << " mm\n";
}

void PrintKept(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Kept of the take before: its motion from " << std::setprecision(4)
        << capture.kept->fromSeconds << " s to " << capture.kept->untilSeconds
        << " s, behind the last frame (--replace leaves nothing of it)\n";
}

nlohmann::ordered_json JsonOf(const RecordResult& result, const replay::CaptureReport& capture) {
    nlohmann::ordered_json object = {{"capture", capture.path},
                                     {"joints", capture.joints},
                                     {"frames", capture.frames},
                                     {"frameSeconds", capture.frameSeconds},
                                     {"maxPositionErrorMetres", capture.maxPositionErrorMetres}};
    if (result.holdsToGround) {
        object["liftedFrames"] = capture.liftedFrames;
        object["maxLiftMetres"] = capture.maxLiftMetres;
    }
    if (result.followsWithCamera) {
        object["maxFieldOfViewErrorDegrees"] = capture.maxFieldOfViewErrorDegrees;
        object["maxTargetDistanceErrorMetres"] = capture.maxTargetDistanceErrorMetres;
    }
    if (capture.kept) {
        object["keptFromSeconds"] = capture.kept->fromSeconds;
        object["keptUntilSeconds"] = capture.kept->untilSeconds;
    }
    return object;
}

}  // namespace

void PrintForPerson(std::ostream& out, const RecordResult& result) {
    out << std::fixed;
    for (const replay::CaptureReport& capture : result.captures) {
        PrintCapture(out, capture);
        if (&capture != &result.captures.back()) out << '\n';
    }
    out << " in " << std::setprecision(2) << result.recordSeconds << " s\n";
    for (const std::string& complaint : result.complaints)
        out << "Complaint: " << complaint << '\n';
    if (result.saved.empty()) out << "Not saved: --scene FILE saves the scene\n";
    out << "In the scene: " << Counted(result.nodes, "node") << " with "
        << Counted(result.keys, "key") << ", " << std::setprecision(1) << result.bytesPerKey
        << " bytes each\n";
    out << "Furthest from where it is meant to be: " << std::setprecision(4)
        << FurthestMetres(result) * 1000 << " mm\n";
    for (const replay::CaptureReport& capture : result.captures) {
        if (result.holdsToGround) PrintLift(out, capture);
        if (result.followsWithCamera) PrintLens(out, capture);
        if (capture.kept) PrintKept(out, capture);
    }
    out << "Undo (" << Counted(result.undoSteps, "step") << "): scene "
        << SameOrNot(result.undoIdentical) << " to before; redo: scene "
        << SameOrNot(result.redoIdentical) << " to the recording\n";
    out << "Left over after shutdown: " << Counted(result.hostObjectsAlive, "host object") << '\n';
}

void PrintForProgram(std::ostream& out, const RecordResult& result) {
    nlohmann::ordered_json object;
    if (result.captures.size() == 1) object = JsonOf(result, result.captures.front());
    object["nodes"] = result.nodes;
    object["keys"] = result.keys;
    object["undoSteps"] = result.undoSteps;
    object["undoIdentical"] = result.undoIdentical;
    object["redoIdentical"] = result.redoIdentical;
    object["maxPositionErrorMetres"] = FurthestMetres(result);
    object["bytesPerKey"] = result.bytesPerKey;
    object["hostObjectsAlive"] = result.hostObjectsAlive;
    object["recordSeconds"] = result.recordSeconds;
    object["complaints"] = result.complaints;
    object["saved"] = result.saved;
    for (const replay::CaptureReport& capture : result.captures)
        object["captures"].push_back(JsonOf(result, capture));
    PrintJson(out, object);
}

}  // namespace headless
