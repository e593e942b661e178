// Lives that are killed at any call, in any record or with any byte of their tape, and what is
// recovered of them, held against the same life that ended there undisturbed.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "headless/scene_file_view.h"
#include "player/perform.h"
#include "player/recovery/recover.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/read_tape.h"
#include "recorder/tape/tape_writer.h"
#include "tests/recovery/life.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/newest_segment.h"

namespace {

using life::Life;

// A host with the plug-in and a Core of this program's own.
struct Stage {
    explicit Stage(headless::CoreBetween& core) : seat(core) {
        session.OnMessageBox([this](const auto& box) { boxes += box.text; });
        const std::string error = session.LoadPlugin(PLUGIN_MODULE);
        if (!error.empty()) throw std::runtime_error(error);
        session.Start();
    }
    headless::CoreSeat seat;
    std::string boxes;
    headless::Session session;
};

enum class Death { kAtCall, kInRecord, kOfTape };

// Dies when it has taken in so many records.
struct Killer final : recorder::Sink {
    explicit Killer(std::uint64_t records) : left(records) {}
    void Take(const recorder::Record&, std::span<const std::byte>) noexcept override {
        if (left-- == 0) raise(SIGKILL);
    }
    std::uint64_t left;
};

struct Run {
    unsigned seed;
    Death death;
    std::uint64_t place;  // of a thousand
};

constexpr std::uint64_t kNever = ~std::uint64_t{0};

void LiveOnTape(life::Settings settings, const std::string& tape, std::uint64_t calls,
                std::uint64_t records) {
    recorder::Stream stream;
    std::string whyNot;
    const auto writer = recorder::TapeWriter::Open({tape}, whyNot);
    Killer killer(records);
    if (!writer) throw std::runtime_error(whyNot);
    stream.Add(*writer);
    stream.Add(killer);
    settings.stream = &stream;
    settings.coreCalls = calls;
    settings.end = [] { raise(SIGKILL); };
    Life life(settings);
    Stage stage(life);
    life.Run(stage.session);
}

void LiveInChild(const life::Settings& settings, const std::string& tape, std::uint64_t calls,
                 std::uint64_t records) {
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0) {
        try {
            LiveOnTape(settings, tape, calls, records);
        } catch (const std::exception& error) {
            std::cerr << error.what() << '\n';
        }
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL)
        throw std::runtime_error("a life did not end as it was to");
}

// What came onto a tape.
struct Count {
    std::uint64_t records = 0;
    std::uint64_t calls = 0;
    std::uint64_t acts = 0;
    bool isInAct = false;  // no call came behind the last one
    std::size_t saves = 0;
    bool isFixed = false;  // a group that is open is not to be taken back
};

Count CountOf(const recorder::TapeSession& session) {
    using recorder::Operation;
    Count count;
    int groups = 0;
    for (const recorder::Record& record : session.records) {
        ++count.records;
        const bool isCall = record.head.kind == recorder::RecordKind::kCall;
        // What owners ask for while they are asked is no part of the life.
        if (isCall && player::IsOfCore(record) && record.head.nesting == 0) {
            ++count.calls;
            count.isInAct = false;
        }
        if (isCall) {
            const Operation operation = record.head.operation;
            groups += operation == Operation::AdaptorInterface_BeginUndoGroup;
            groups -= operation == Operation::AdaptorInterface_EndUndoGroup ||
                      operation == Operation::AdaptorInterface_CancelUndoGroup;
            count.isFixed = groups > 0 &&
                            (count.isFixed || operation == Operation::CoreInterface_GetCoreState ||
                             operation == Operation::CoreNode_SetParent);
        }
        if (recorder::NoteOf(record).word == "act") {
            ++count.acts;
            count.isInAct = true;
        }
    }
    for (const player::Checkpoint& each : player::CheckpointsOf(session))
        count.saves += each.kind == player::Checkpoint::Kind::kSaved;
    return count;
}

// As if everything had ended with that byte of what is written.
void CutTape(const std::string& path, std::uint64_t thousandth) {
    const SegmentPlace newest = NewestSegment(ReadFile(path));
    const std::uint64_t from = newest.begin + (newest.end - newest.begin) * thousandth / 1000;
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(from));
    file << std::string(newest.end - from, '\0');
}

void LiveUndisturbed(life::Settings settings, const Count& count, bool keepsOpenGroup,
                     const std::string& scene) {
    settings.coreCalls = count.calls;
    settings.hostActs = count.acts;
    Life life(settings);
    Stage stage(life);
    try {
        life.Run(stage.session);
    } catch (const life::Ended&) {
    }
    life.Settle(keepsOpenGroup);
    stage.session.SaveScene(scene);
}

player::RecoveryReport Recover(const recorder::TapeContents& tape, const std::string& into,
                               bool takesOpenGroup, const std::string& scene) {
    player::RecoveryChoice choice;
    choice.scene = into;
    if (takesOpenGroup) choice.openGroups = player::OpenGroups::kTaken;
    player::Recovery recovery(tape, choice);
    Stage stage(recovery.Core());
    if (!into.empty()) stage.session.OpenScene(into);
    player::RecoveryReport report = recovery.Perform(stage.session);
    for (const std::string& lost : report.lost)
        std::cout << "  lost: " << lost << '\n';
    stage.session.SaveScene(scene);
    if (!stage.boxes.empty()) throw std::runtime_error(stage.boxes);
    return report;
}

// What the Core's state alone is made of is of the last save on the tape, and the time and
// selection are nobody's work.
std::vector<std::string> Differences(const std::string& first, const std::string& second) {
    std::vector<std::string> lines;
    for (const headless::SceneDifference& each :
         headless::CompareSceneFiles(first, second, headless::CachedKeys::kLeftOut)) {
        const std::string line = each.place + ": " + each.what;
        if (line.find("TVL_tag") == std::string::npos && !each.place.starts_with("utility") &&
            !each.what.starts_with("handle ") && !each.what.starts_with("current tick "))
            lines.push_back(line);
    }
    return lines;
}

struct Totals {
    std::size_t runs = 0;
    std::size_t samples = 0;
    std::size_t groups = 0;
    std::size_t left = 0;
};

// Empty, or what is wrong.
std::string Try(const Run& run, Totals& totals) {
    const TemporaryFolder folder;
    life::Settings settings;
    settings.seed = run.seed;
    settings.folder = folder.File("saved");
    const std::string path = folder.File("life.tape");
    std::filesystem::create_directory(settings.folder);

    LiveInChild(settings, path, kNever, kNever);
    const Count whole = CountOf(recorder::ReadTape(path).sessions.back());
    if (run.death == Death::kOfTape) {
        CutTape(path, run.place);
    } else {
        std::filesystem::remove(path);
        const bool isAtCall = run.death == Death::kAtCall;
        LiveInChild(settings, path, isAtCall ? whole.calls * run.place / 1000 : kNever,
                    isAtCall ? kNever : whole.records * run.place / 1000);
    }
    recorder::TapeContents tape;
    try {
        tape = recorder::ReadTape(path);
    } catch (const std::runtime_error&) {
        return run.death == Death::kOfTape && run.place < 100 ? "" : "the tape cannot be read";
    }
    Count count = CountOf(tape.sessions.back());
    const std::size_t save = (run.seed + run.place) % (count.saves + 1);
    const bool takesOpenGroup = run.seed % 2 == 0 || count.isFixed;
    const std::string into =
        save == 0 ? "" : settings.folder + '/' + std::to_string(save) + ".scene";
    const player::RecoveryReport report =
        Recover(tape, into, takesOpenGroup, folder.File("recovered.scene"));
    ++totals.runs;
    totals.groups += report.recovered.size();
    totals.left += report.left.size();
    for (const player::RecoveredWork& work : report.recovered)
        totals.samples += work.group.samples;

    settings.folder = folder.File("again");
    std::filesystem::create_directory(settings.folder);
    std::vector<std::string> differences;
    for (int attempt = 0; attempt < (count.isInAct ? 2 : 1); ++attempt) {
        LiveUndisturbed(settings, count, takesOpenGroup, folder.File("undisturbed.scene"));
        differences = Differences(folder.File("undisturbed.scene"), folder.File("recovered.scene"));
        if (differences.empty()) return "";
        if (count.acts > 0) --count.acts;  // what the user did then may not have been told any more
    }
    std::string text = "into " + (into.empty() ? "nothing" : into) + ", behind " + report.base;
    for (const std::string& difference : differences)
        text += "\n  " + difference;
    return text;
}

unsigned NumberOf(const char* text) {
    return static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

}  // namespace

int main(int argc, char** argv) {
    // COUNT [FIRST]: so many runs, each known by its number.
    const unsigned count = argc > 1 ? NumberOf(argv[1]) : 21;
    const unsigned first = argc > 2 ? NumberOf(argv[2]) : 1;
    Totals totals;
    int failures = 0;
    for (unsigned number = first; number < first + count; ++number) {
        std::mt19937 random(number);
        const Run run{number, static_cast<Death>(number % 3), random() % 1001};
        std::string wrong;
        try {
            wrong = Try(run, totals);
        } catch (const std::exception& error) {
            wrong = error.what();
        }
        if (wrong.empty()) continue;
        ++failures;
        std::cout << "run " << number << ": " << wrong << '\n';
    }
    std::cout << totals.runs << " lives ended early; recovered " << totals.groups << " groups with "
              << totals.samples << " samples, left " << totals.left << " that were open or undone; "
              << failures << " runs failed\n";
    return failures == 0 ? 0 : 1;
}
