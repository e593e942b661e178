#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <nlohmann/json.hpp>
#include <ostream>
#include <vector>

#include "command/likely_unit.h"
#include "command/output.h"
#include "command/record.h"
#include "command/written_files.h"

// What a person, or a program, is told of a recording.
namespace headless {
namespace {

const char* SameOrNot(bool identical) {
    return identical ? "identical" : "NOT identical";
}

double FurthestMetres(const RecordResult& result) {
    double furthest = 0;
    for (const CaptureResult& capture : result.captures)
        furthest = std::max(furthest, capture.report.maxPositionErrorMetres);
    return furthest;
}

// Whether it is nobody's at its highest, since somebody may lie in the first frame. One that was
// said is not doubted.
bool IsHeightOdd(const RecordResult& result, const replay::CaptureReport& capture) {
    const double height = capture.figure.mostHeightMetres;
    return IsNobodysHeight(height) && std::abs(height - result.saidHeight) > result.saidHeight / 2;
}

double HeightInUnits(const replay::CaptureReport& capture) {
    return capture.figure.mostHeightMetres / capture.recording.metresPerUnit;
}

CaptureUnit UnitOf(const replay::CaptureReport& capture) {
    return LikelyUnit(HeightInUnits(capture));
}

std::string Metres(double metres) {
    return Rounded(metres, 2) + " m";
}

std::string Place(const replay::NodeReport::Place& place) {
    std::string text;
    for (const double metres : place)
        (text += text.empty() ? "" : ", ") += Rounded(metres, 2);
    return text + " m";
}

std::string Rate(const replay::Recording& recording) {
    return Rounded(1 / recording.frameSeconds, 2);
}

std::string Length(const replay::Recording& recording) {
    return Rounded(static_cast<double>(recording.FrameCount()) * recording.frameSeconds, 2) + " s";
}

// Rounded up, so that they are by no more than that.
std::string BetweenTicks(const CaptureResult& capture) {
    if (capture.framesBetweenTicks == 0) return "none";
    constexpr double kHundredths = 1e5;  // of a millisecond, in a second
    return std::to_string(capture.framesBetweenTicks) + ", by up to " +
           Rounded(std::ceil(capture.mostBetweenSeconds * kHundredths) / 100, 2) + " ms";
}

// A height that no person has is most likely one in another unit.
void PrintOddHeight(std::ostream& out, const replay::CaptureReport& capture) {
    const CaptureUnit unit = UnitOf(capture);
    out << "It gets " << Metres(capture.figure.mostHeightMetres) << " high, which nobody is: ";
    if (std::abs(unit.metres / capture.recording.metresPerUnit - 1) < 0.01)
        out << "no usual --scale fits better\n";
    else
        out << "--scale " << Plain(unit.metres) << " (" << unit.name << ") makes it "
            << Metres(HeightInUnits(capture) * unit.metres) << '\n';
}

void PrintOnly(std::ostream& out, const RecordResult& result) {
    const CaptureResult& capture = result.captures.front();
    const replay::CaptureReport& report = capture.report;
    const replay::Recording& recording = report.recording;
    out << "Recorded " << InTable(recording.capture) << ": " << Counted(report.joints, "joint")
        << ", " << Counted(recording.FrameCount(), "frame") << " (" << Length(recording)
        << " of motion) in " << Rounded(result.recordSeconds, 2) << " s\n";
    out << "Rate: " << Rate(recording) << " frames a second, " << Rounded(result.sceneRate, 2)
        << " in the scene; between ticks of the host: " << BetweenTicks(capture)
        << "\nFigure: " << Metres(report.figure.heightMetres)
        << " high in its first frame, starts at " << Place(report.figure.start) << ", gets up to "
        << Metres(report.figure.furthestMetres) << " away\n";
    if (IsHeightOdd(result, report)) PrintOddHeight(out, report);
}

std::string DoubtedHeight(const RecordResult& result, const replay::CaptureReport& capture) {
    const std::string height = Metres(capture.figure.heightMetres);
    if (!IsHeightOdd(result, capture)) return height;
    return height + " (--scale " + Plain(UnitOf(capture).metres) + "?)";
}

void PrintSeveral(std::ostream& out, const RecordResult& result) {
    const auto recorded = std::ranges::count_if(result.captures, &CaptureResult::IsRecorded);
    out << "Recorded " << recorded << " of " << Counted(result.captures.size(), "capture") << " in "
        << Rounded(result.recordSeconds, 2) << " s\n";
    std::vector<std::vector<std::string>> rows = {{"take", "frames", "length", "fps", "height",
                                                   "starts at", "gets away", "between ticks",
                                                   "capture"}};
    for (const CaptureResult& capture : result.captures) {
        if (!capture.IsRecorded()) continue;
        const replay::CaptureReport& report = capture.report;
        rows.push_back({InTable(report.owner), std::to_string(report.recording.FrameCount()),
                        Length(report.recording), Rate(report.recording),
                        DoubtedHeight(result, report), Place(report.figure.start),
                        Metres(report.figure.furthestMetres), BetweenTicks(capture),
                        InTable(report.recording.capture)});
    }
    PrintTable(out, rows);
    for (const CaptureResult& capture : result.captures)
        if (!capture.IsRecorded()) out << "Not recorded: " << InTable(capture.report.error) << '\n';
}

// What the height has found is for the other captures of the same actor and unit.
void PrintScale(std::ostream& out, const RecordResult& result) {
    const auto recorded = std::ranges::find_if(result.captures, &CaptureResult::IsRecorded);
    if (result.saidHeight > 0 && recorded != result.captures.end())
        out << "The height makes it --scale " << Plain(recorded->report.recording.metresPerUnit)
            << '\n';
}

void PrintTime(std::ostream& out, const RecordResult& result) {
    double first = std::numeric_limits<double>::infinity();
    double last = -first;
    for (const CaptureResult& capture : result.captures) {
        if (!capture.IsRecorded()) continue;
        first = std::min(first, capture.report.recording.FirstSeconds());
        last = std::max(last, capture.report.recording.LastSeconds());
    }
    out << "Time: " << Rounded(first, 3) << " s to " << Rounded(last, 3)
        << " s of the scene, whose range is " << Rounded(result.sceneRange.first, 3) << " s to "
        << Rounded(result.sceneRange.second, 3) << " s\n";
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

// Of several each is named.
void PrintMore(std::ostream& out, const RecordResult& result,
               const replay::CaptureReport& capture) {
    const std::string about = result.captures.size() > 1 ? InTable(capture.owner) + ": " : "";
    if (result.holdsToGround) PrintLift(out << about, capture);
    if (result.followsWithCamera) PrintLens(out << about, capture);
    if (capture.kept) PrintKept(out << about, capture);
}

// A scene that is named and not saved is told among the complaints.
void PrintNotSaved(std::ostream& out, const RecordResult& result) {
    if (!result.saved.empty()) return;
    out << (result.hasTables ? "The scene was not saved" : "Nothing was saved");
    out << (result.isFaulty ? "\n" : ": -o FILE saves the scene\n");
}

nlohmann::ordered_json JsonOf(const RecordResult& result, const CaptureResult& capture) {
    const replay::CaptureReport& report = capture.report;
    const replay::Recording& recording = report.recording;
    if (!capture.IsRecorded()) return {{"capture", recording.capture}, {"error", report.error}};
    nlohmann::ordered_json object = {{"capture", recording.capture},
                                     {"take", report.owner},
                                     {"joints", report.joints},
                                     {"frames", recording.FrameCount()},
                                     {"firstFrame", recording.firstFrame},
                                     {"frameSeconds", recording.frameSeconds},
                                     {"firstSeconds", recording.FirstSeconds()},
                                     {"lastSeconds", recording.LastSeconds()},
                                     {"framesBetweenTicks", capture.framesBetweenTicks},
                                     {"mostBetweenTicksSeconds", capture.mostBetweenSeconds},
                                     {"metresPerUnit", recording.metresPerUnit},
                                     {"heightMetres", report.figure.heightMetres},
                                     {"mostHeightMetres", report.figure.mostHeightMetres},
                                     {"start", report.figure.start},
                                     {"furthestMetres", report.figure.furthestMetres},
                                     {"maxPositionErrorMetres", report.maxPositionErrorMetres}};
    if (IsHeightOdd(result, report)) object["likelyMetresPerUnit"] = UnitOf(report).metres;
    if (result.holdsToGround) {
        object["liftedFrames"] = report.liftedFrames;
        object["maxLiftMetres"] = report.maxLiftMetres;
    }
    if (result.followsWithCamera) {
        object["maxFieldOfViewErrorDegrees"] = report.maxFieldOfViewErrorDegrees;
        object["maxTargetDistanceErrorMetres"] = report.maxTargetDistanceErrorMetres;
    }
    if (report.kept) {
        object["keptFromSeconds"] = report.kept->fromSeconds;
        object["keptUntilSeconds"] = report.kept->untilSeconds;
    }
    return object;
}

}  // namespace

void PrintForPerson(std::ostream& out, const RecordResult& result) {
    out << std::fixed;
    if (result.captures.size() == 1)
        PrintOnly(out, result);
    else
        PrintSeveral(out, result);
    PrintScale(out, result);
    PrintEach(out, kComplaint, result.complaints);
    PrintTime(out, result);
    out << "In the scene: " << Counted(result.nodes, "node") << " with "
        << Counted(result.keys, "key") << ", " << std::setprecision(1) << result.bytesPerKey
        << " bytes each\n";
    out << "Furthest from where it is meant to be: " << std::setprecision(4)
        << FurthestMetres(result) * 1000 << " mm\n";
    for (const CaptureResult& capture : result.captures)
        if (capture.IsRecorded()) PrintMore(out, result, capture.report);
    out << "Undo (" << Counted(result.undoSteps, "step") << "): scene "
        << SameOrNot(result.undoIdentical) << " to before; redo: scene "
        << SameOrNot(result.redoIdentical) << " to the recording\n";
    out << "Left over after shutdown: " << Counted(result.hostObjectsAlive, "host object") << '\n';
    TellSaved(out);
    PrintNotSaved(out, result);
}

void PrintForProgram(std::ostream& out, const RecordResult& result) {
    nlohmann::ordered_json object;
    if (result.captures.size() == 1) object = JsonOf(result, result.captures.front());
    object["sceneFramesPerSecond"] = result.sceneRate;
    object["rangeSeconds"] = {result.sceneRange.first, result.sceneRange.second};
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
    for (const CaptureResult& capture : result.captures)
        object["captures"].push_back(JsonOf(result, capture));
    PrintJson(out, object);
}

}  // namespace headless
