#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/stage_recorder.h"
#include "command/tape_print.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "recorder/tape/read_tape.h"
#include "recorder/watch/watch.h"

namespace headless {
namespace {

using Json = nlohmann::ordered_json;

// What the watch says of each session.
struct TapeFindings {
    std::vector<std::vector<recorder::Finding>> sessions;
    std::vector<std::string> blind;  // of which it has not seen all, a line each
};

TapeFindings WatchTape(const recorder::TapeContents& tape) {
    TapeFindings found;
    for (const recorder::TapeSession& session : tape.sessions) {
        recorder::Watch watch;
        for (const recorder::Record& record : session.records)
            watch.Take(record, {});
        found.sessions.push_back(watch.Findings());
        if (watch.HasSeenAll()) continue;
        found.blind.push_back("Session " + std::to_string(found.sessions.size()) +
                              ": a record is missing, and nothing is said of what comes behind it");
    }
    return found;
}

bool HasAny(const TapeFindings& found) {
    return std::ranges::any_of(found.sessions,
                               [](const auto& session) { return !session.empty(); });
}

void PrintForPerson(std::ostream& out, const TapeFindings& found) {
    for (std::size_t number = 1; number <= found.sessions.size(); ++number) {
        std::vector<recorder::Finding> session = found.sessions[number - 1];
        if (session.empty()) continue;
        for (recorder::Finding& finding : session) {
            finding.node = InTable(finding.node);
            finding.about = InTable(finding.about);
        }
        out << "Session " << number << ":\n";
        for (const recorder::Finding& finding : session)
            out << Line(finding) << '\n';
        out << '\n' << recorder::Table(session);
    }
}

void PrintForProgram(std::ostream& out, const TapeFindings& found) {
    Json findings = Json::array();
    for (std::size_t number = 1; number <= found.sessions.size(); ++number)
        for (const recorder::Finding& finding : found.sessions[number - 1]) {
            Json object = JsonOf(finding);
            object["session"] = number;
            findings.push_back(std::move(object));
        }
    PrintJson(out, {{"findings", findings}, {"complaints", found.blind}});
}

}  // namespace

void AddTapeWatchVerb(CLI::App& app) {
    struct Arguments {
        std::string tape;
        Audience audience = Audience::kPerson;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const verb =
        AddVerb(app, kTaping, "tape watch",
                "Hold the calls on a tape against the contract, as `--watch` does while they are "
                "made. Each rule that was broken is told with the call, the node, how often, and "
                "where it began. The exit status is 0 if none was, 1 if one was, 2 if the tape "
                "cannot be read.");
    AddTape(*verb, arguments->tape);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "tape watch walk.tape");
    verb->callback([arguments] {
        const TapeFindings found = WatchTape(ReadTapeOrRefuse(arguments->tape, kNotCompared));
        Print(std::cout, found, arguments->audience);
        PrintEach(std::cerr, kComplaint, found.blind);
        if (!std::cout.flush()) throw Failure(kOutputLost, kNotCompared);
        if (HasAny(found)) throw Ended{kDifferent};
    });
}

}  // namespace headless
