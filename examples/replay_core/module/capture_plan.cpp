#include "replay_core/module/capture_plan.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "platform/narrow_path.h"
#include "platform/progress_line.h"
#include "replay/request.h"
#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"
#include "replay_core/recorder/into_take.h"

namespace replay {
namespace {

std::string CaptureName(const std::string& path) {
    return platform::ToNarrow(platform::FromNarrow(path).stem());
}

// For a capture that cannot be read: what helps if it was only cut short.
std::string CutHint(const std::string& path) {
    const auto cut = ReadMotion(path, CutCapture::kTaken);
    return std::holds_alternative<Motion>(cut)
               ? "; " + std::string(variable::kPartial) + " has the frames before recorded"
               : "";
}

// The result is empty, or says in one line why the capture cannot be recorded.
std::string Read(const std::string& path, const Request& request, PlannedTake& planned) {
    const CutCapture cut = request.takesCutCaptures ? CutCapture::kTaken : CutCapture::kRefused;
    std::variant<Motion, ReadError> read = ReadMotion(path, cut);
    if (const ReadError* const error = std::get_if<ReadError>(&read))
        return Describe(*error) + CutHint(path);
    planned.replaces = request.replaces;
    planned.motion = std::get<Motion>(std::move(read));
    const std::variant<FrameRange, std::string> frames = FramesOf(request.part, planned.motion);
    if (const std::string* const error = std::get_if<std::string>(&frames))
        return path + ": " + *error;
    const auto [first, end] = std::get<FrameRange>(frames);
    planned.recording = {.capture = path,
                         .frameSeconds = planned.motion.frameSeconds,
                         .firstFrame = first,
                         .endFrame = end};
    if (request.startSeconds)
        planned.recording.startSeconds = *request.startSeconds - planned.recording.FirstSeconds();
    return {};
}

// Metres in a unit with which the figure is as high as it is said to be when it is recorded first;
// nothing if no unit makes it so.
std::optional<double> ScaleFor(double heightMetres, const PlannedTake& planned) {
    std::vector<TVL::CMatrix4> pose(planned.motion.joints.size());
    EvaluatePose(planned.motion, planned.recording.firstFrame, 1, pose);
    const double scale = heightMetres / HeightOf(planned.motion, 1, pose);
    if (scale > 0 && scale <= kMostMetresPerUnit) return scale;
    return std::nullopt;
}

// All captures of a request are in one unit: where that is found by the height of the figure, the
// first one tells it for the others.
std::string FindScale(const Request& request, std::optional<double>& scale, PlannedTake& planned) {
    if (!scale && request.heightMetres) {
        scale = ScaleFor(*request.heightMetres, planned);
        if (!scale)
            return planned.recording.capture + ": the figure has no height in frame " +
                   std::to_string(planned.recording.firstFrame) + ", by which " +
                   variable::kHeight + " could find the scale";
    }
    planned.recording.metresPerUnit = scale.value_or(request.metresPerUnit);
    return {};
}

// Empty, or one line on why the capture does not go into the take that was found for it.
std::string Misfit(const PlannedTake& planned) {
    if (planned.replaces || !planned.take->IsThere()) return {};
    const std::string why = WhyNotInto(*planned.take, planned.motion, planned.recording);
    if (why.empty()) return {};
    return planned.recording.capture + ": the take \"" + planned.take->Name() + "\" in the scene " +
           why + "; " + std::string(variable::kTake) + " names a take of its own, " +
           variable::kReplace + " puts the capture in its place";
}

// What is lost of the take as it was; empty for nothing, or where it was asked for.
std::string WrittenOver(const PlannedTake& planned) {
    if (planned.replaces || !planned.take->IsThere()) return {};
    const std::string lost = CaptureWrittenOver(*planned.take, planned.recording);
    if (lost.empty()) return {};
    return planned.recording.capture + ": written over what the take \"" + planned.take->Name() +
           "\" held of " + lost;
}

std::string AllErrors(const std::vector<CaptureReport>& captures) {
    std::string errors;
    for (const CaptureReport& capture : captures)
        errors += errors.empty() ? capture.error : "; " + capture.error;
    return errors;
}

}  // namespace

std::vector<PlannedTake> ReadCaptures(const Request& request, Report& report) {
    std::vector<PlannedTake> plan;
    std::optional<double> scale;
    platform::ProgressLine progress(request.showsProgress, "Reading captures",
                                    platform::ProgressIn::kSteps, request.captures.size());
    for (const std::string& path : request.captures) {
        CaptureReport& capture = report.captures.emplace_back();
        capture.recording.capture = path;
        PlannedTake planned;
        capture.error = Read(path, request, planned);
        if (capture.error.empty()) capture.error = FindScale(request, scale, planned);
        if (capture.error.empty()) plan.push_back(std::move(planned));
        if (progress.Advance()) continue;
        report.error = "nothing was recorded, since the reading of captures was stopped";
        return {};
    }
    if (plan.empty()) report.error = AllErrors(report.captures);
    return plan;
}

void FindTakes(const Request& request, Takes& takes, std::vector<PlannedTake>& plan,
               Report& report) {
    std::vector<std::string> names;
    for (const PlannedTake& planned : plan)
        names.push_back(request.take.empty() ? CaptureName(planned.recording.capture)
                                             : request.take);
    const std::vector<Take*> found = takes.ForRecording(names);
    const std::vector<CaptureReport*> reports = ReportsOf(plan, report);
    for (std::size_t i = 0; i < plan.size(); ++i) {
        plan[i].take = found[i];
        reports[i]->error = Misfit(plan[i]);
        if (!reports[i]->error.empty())
            plan[i].take = nullptr;
        else if (std::string lost = WrittenOver(plan[i]); !lost.empty())
            report.warnings.push_back(std::move(lost));
    }
    std::erase_if(plan, [](const PlannedTake& planned) { return !planned.take; });
    if (plan.empty()) report.error = AllErrors(report.captures);
}

std::vector<CaptureReport*> ReportsOf(std::span<const PlannedTake> plan, Report& report) {
    std::vector<CaptureReport*> reports;
    for (CaptureReport& capture : report.captures)
        if (capture.error.empty() && reports.size() < plan.size()) reports.push_back(&capture);
    return reports;
}

}  // namespace replay
