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

// Whatever a capture holds then still fits into the host's single precision.
constexpr double kMostMetresPerUnit = 1e6;

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

    void ReadScale() {
        const std::string text = Variable(variable::kScale);
        if (text.empty()) return;
        const std::optional<double> scale = ParseNumber(text);
        if (scale && *scale > 0 && *scale <= kMostMetresPerUnit)
            request_.metresPerUnit = *scale;
        else
            Refuse(variable::kScale, "a number of metres above 0", text);
    }

    void ReadFrames() {
        const std::string text = Variable(variable::kFrames);
        if (text.empty()) return;
        const std::size_t colon = text.find(':');
        const std::string_view whole = text;
        const std::optional<std::size_t> first = ParseCount(whole.substr(0, colon));
        const std::optional<std::size_t> end =
            colon == std::string::npos ? std::nullopt : ParseCount(whole.substr(colon + 1));
        if (first && end && *first < *end)
            request_.frames = FrameRange{*first, *end};
        else
            Refuse(variable::kFrames, "two frame numbers A:B with A below B", text);
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
        const std::string time = Variable(variable::kInspectTime);
        if (time.empty()) return;
        const std::optional<double> seconds = ParseNumber(time);
        if (!seconds) return Refuse(variable::kInspectTime, "a time in seconds", time);
        request_.inspectionSeconds = *seconds;
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
    VariableReader reader(request);
    request.mergedScenes = Lines(variable::kMerge);
    reader.ReadSample();
    request.sampledNodes = Lines(variable::kSampleNodes);
    reader.ReadInspect();
    reader.ReadCaptures();
    reader.ReadScale();
    reader.ReadFrames();
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
