#include "command/print_result.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "command/counted.h"
#include "command/print_json.h"

namespace headless {
namespace {

const char* SameOrNot(bool identical) {
    return identical ? "identical" : "NOT identical";
}

double FurthestMetres(const RecordResult& result) {
    double furthest = 0;
    for (const RecordedCapture& capture : result.captures)
        furthest = std::max(furthest, capture.maxPositionErrorMetres);
    return furthest;
}

void PrintCapture(std::ostream& out, const RecordedCapture& capture) {
    const double seconds = static_cast<double>(capture.frames) * capture.frameSeconds;
    out << "Recorded " << capture.capture << ": " << Counted(capture.joints, "joint") << ", "
        << Counted(capture.frames, "frame") << " (" << std::setprecision(1) << seconds
        << " s of motion)";
}

void PrintLift(std::ostream& out, const RecordedCapture::Lift& lift) {
    out << "Lifted onto the ground: " << Counted(lift.frames, "frame") << ", by "
        << std::setprecision(1) << lift.mostMetres * 100 << " cm at most\n";
}

void PrintLens(std::ostream& out, const RecordedCapture::Lens& lens) {
    out << "Camera as written: field of view within " << std::setprecision(7)
        << lens.maxFieldOfViewErrorDegrees << " degrees, target distance within "
        << std::setprecision(4) << lens.maxTargetDistanceErrorMetres * 1000 << " mm\n";
}

void PrintKept(std::ostream& out, const RecordedCapture& capture) {
    out << "Kept of the take before: its motion from " << std::setprecision(4)
        << capture.kept->fromSeconds << " s to " << capture.kept->untilSeconds
        << " s, behind the last frame (--replace leaves nothing of it)\n";
}

nlohmann::ordered_json Object(const RecordedCapture& capture) {
    nlohmann::ordered_json object = {{"capture", capture.capture},
                                     {"joints", capture.joints},
                                     {"frames", capture.frames},
                                     {"frameSeconds", capture.frameSeconds},
                                     {"maxPositionErrorMetres", capture.maxPositionErrorMetres}};
    if (capture.lift) {
        object["liftedFrames"] = capture.lift->frames;
        object["maxLiftMetres"] = capture.lift->mostMetres;
    }
    if (capture.lens) {
        object["maxFieldOfViewErrorDegrees"] = capture.lens->maxFieldOfViewErrorDegrees;
        object["maxTargetDistanceErrorMetres"] = capture.lens->maxTargetDistanceErrorMetres;
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
    for (const RecordedCapture& capture : result.captures) {
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
    for (const RecordedCapture& capture : result.captures) {
        if (capture.lift) PrintLift(out, *capture.lift);
        if (capture.lens) PrintLens(out, *capture.lens);
        if (capture.kept) PrintKept(out, capture);
    }
    out << "Undo (" << Counted(result.undoSteps, "step") << "): scene "
        << SameOrNot(result.undoIdentical) << " to before; redo: scene "
        << SameOrNot(result.redoIdentical) << " to the recording\n";
    out << "Left over after shutdown: " << Counted(result.hostObjectsAlive, "host object") << '\n';
}

void PrintForProgram(std::ostream& out, const RecordResult& result) {
    nlohmann::ordered_json object;
    if (result.captures.size() == 1) object = Object(result.captures.front());
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
    for (const RecordedCapture& capture : result.captures)
        object["captures"].push_back(Object(capture));
    PrintJson(out, object);
}

}  // namespace headless
