#include "replay_core/module/environment.h"

#include <cstdlib>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include "replay/request.h"
#include "replay_core/motion/capture_text.h"
#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

// The lines of a variable; a line of nothing says nothing.
std::vector<std::string> Lines(const char* name) {
    std::vector<std::string> lines;
    std::istringstream text(Variable(name));
    for (std::string line; std::getline(text, line);)
        if (!line.empty()) lines.push_back(std::move(line));
    return lines;
}

std::optional<std::uint32_t> ParseHandle(std::string_view text) {
    const std::optional<std::size_t> number = ParseCount(text);
    if (!number || *number > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

// Reads the variables one by one and keeps the first thing that is wrong with them.
class VariableReader {
  public:
    explicit VariableReader(Request& request) : request_(request) {}

    // Nothing if the variable is not set.
    std::optional<double> ReadMetres(const char* name) {
        const std::string text = Variable(name);
        if (text.empty()) return std::nullopt;
        const std::optional<double> metres = ParseNumber(text);
        if (metres && *metres > 0 && *metres <= kMostMetresPerUnit) return metres;
        Refuse(name, "a number of metres above 0", text);
        return std::nullopt;
    }

    std::optional<double> ReadSeconds(const char* name) {
        const std::string text = Variable(name);
        if (text.empty()) return std::nullopt;
        const std::optional<double> seconds = ParseNumber(text);
        if (!seconds) Refuse(name, "a time in seconds", text);
        return seconds;
    }

    void ReadPart() {
        request_.part.from = ReadMoment(variable::kFrom);
        request_.part.to = ReadMoment(variable::kTo);
        const auto& [from, to] = request_.part;
        if (from && to && from->isSeconds == to->isSeconds && to->number < from->number)
            Refuse(variable::kTo, "nothing before " + Variable(variable::kFrom),
                   Variable(variable::kTo));
    }

    std::optional<CaptureMoment> ReadMoment(const char* name) {
        const std::string text = Variable(name);
        if (text.empty()) return std::nullopt;
        const std::optional<CaptureMoment> moment = ParseMoment(text);
        if (!moment) Refuse(name, "the number of a frame, or seconds as 2.5s", text);
        return moment;
    }

    SceneRange ReadRange() {
        const std::string text = Variable(variable::kRange);
        if (text == variable::kRangeStays) return SceneRange::kStays;
        if (text == variable::kRangeFits) return SceneRange::kFits;
        if (!text.empty()) Refuse(variable::kRange, "stay or fit", text);
        return SceneRange::kGrows;
    }

    // Nothing if the variable is not set, as for a handle.
    std::optional<bool> ReadTruth(const char* name) {
        const std::string text = Variable(name);
        if (text == "0" || text == "1") return text == "1";
        if (!text.empty()) Refuse(name, "0 or 1", text);
        return std::nullopt;
    }

    std::optional<std::uint32_t> ReadHandle(const char* name) {
        const std::string text = Variable(name);
        if (text.empty()) return std::nullopt;
        const std::optional<std::uint32_t> handle = ParseHandle(text);
        if (!handle) Refuse(name, "the number of a node", text);
        return handle;
    }

    void ReadSample() {
        const std::string text = Variable(variable::kSample);
        if (text.empty()) return;
        request_.sampleTimes = ParseSampleTimes(text);
        if (!request_.sampleTimes)
            Refuse(variable::kSample,
                   "START:END:STEP in seconds, END not before START, STEP above 0, at most " +
                       std::to_string(kMostSampleTimes) + " times",
                   text);
        else if (Variable(variable::kCsv).empty())
            Refuse(variable::kCsv, "the path of a file", "");
    }

    void ReadInspect() {
        for (const std::string& line : Lines(variable::kInspect)) {
            const std::optional<std::uint32_t> handle = ParseHandle(line);
            if (!handle) return Refuse(variable::kInspect, "numbers of nodes, one a line", line);
            request_.inspectedNodes.push_back(*handle);
        }
        request_.inspectionSeconds = ReadSeconds(variable::kInspectTime).value_or(0);
    }

    // The places of several captures in one file could not be told apart, and each is a take.
    void ReadCaptures() {
        request_.captures = Lines(variable::kCaptures);
        if (request_.captures.size() < 2 || request_.sampleTimes) return;
        for (const char* name : {variable::kCsv, variable::kTake})
            if (const std::string text = Variable(name); !text.empty())
                Refuse(name, "nothing when there are several captures", text);
    }

    void Refuse(const char* name, const std::string& expected, const std::string& found) {
        if (!request_.error.empty()) return;
        request_.error = std::string(name) + ": expected " + expected + ", found ";
        request_.error += found.empty() ? "nothing" : Quoted(found);
    }

  private:
    Request& request_;
};

}  // namespace

Request ReadEnvironment() {
    Request request;
    request.csv = Variable(variable::kCsv);
    request.report = Variable(variable::kReport);
    request.showsProgress = Variable(variable::kProgress) == "1";
    request.isInterruptible = Variable(variable::kInterruptible) == "1";
    VariableReader reader(request);
    request.mergedScenes = Lines(variable::kMerge);
    reader.ReadSample();
    request.sampledNodes = Lines(variable::kSampleNodes);
    reader.ReadInspect();
    reader.ReadCaptures();
    request.metresPerUnit = reader.ReadMetres(variable::kScale).value_or(request.metresPerUnit);
    request.heightMetres = reader.ReadMetres(variable::kHeight);
    reader.ReadPart();
    request.startSeconds = reader.ReadSeconds(variable::kStart);
    request.range = reader.ReadRange();
    request.take = Variable(variable::kTake);
    request.replaces = reader.ReadTruth(variable::kReplace).value_or(false);
    request.takesCutCaptures = reader.ReadTruth(variable::kPartial).value_or(false);
    request.optimisedControllers = reader.ReadTruth(variable::kOptimised);
    request.followsWithCamera = reader.ReadTruth(variable::kFollowCamera).value_or(false);
    request.ground = reader.ReadHandle(variable::kGround);
    request.guide = reader.ReadHandle(variable::kGuide);
    return request;
}

}  // namespace replay
