#include "recorder/recorder.h"

#include <algorithm>

#include "recorder/stream/notes.h"
#include "recorder/stream/record_reader.h"
#include "recorder/tape/read_tape.h"
#include "recorder/tape/scene_digest.h"
#include "tests/end_to_end/command.h"

// The recorder between plug-in and Core, asked for by options and as a library in the Core's place.

namespace {

namespace fs = std::filesystem;
using recorder::RecordKind;

constexpr char kSteps[] =
    " --do \"press 1046\" --do \"time 0.5\" --do \"save a.scene\" --do undo --do redo";

std::string Quoted(const std::string& path) {
    return '"' + path + '"';
}

class RecorderBetween : public Command {
  protected:
    void SetUp() override { isWatched_ = false; }

    // The bytes of what a Core makes of the steps.
    std::string SceneBy(const std::string& core, const std::string& options = "") const {
        Do("run --core " + Quoted(core) + options + kSteps);
        return Read("a.scene");
    }

    // A folder in which the recorder has taken the Core's place; its library.
    std::string TakePlace(const std::string& settings, const char* core = HELLO_CORE) const {
        const fs::path folder = folder_.Path() / "vendor";
        fs::create_directories(folder);
        constexpr auto kOver = fs::copy_options::overwrite_existing;
        fs::copy_file(core, folder / "real.core", kOver);
        fs::copy_file(RECORDER_MODULE, folder / fs::path(RECORDER_MODULE).filename(), kOver);
        Write("vendor/recorder.txt", settings);
        return platform::ToNarrow(folder / fs::path(RECORDER_MODULE).filename());
    }

    recorder::TapeSession OnlySession(const std::string& tape) {
        contents_ = recorder::ReadTape(File(tape));
        EXPECT_EQ(contents_.sessions.size(), 1U);
        EXPECT_EQ(contents_.damages, std::vector<std::string>());
        EXPECT_TRUE(contents_.sessions.front().isWhole && contents_.sessions.front().isClosed);
        return contents_.sessions.front();
    }

    const std::string hello_ = platform::ToNarrow(fs::absolute(HELLO_CORE));
    recorder::TapeContents contents_;
};

std::vector<std::string> NotesOf(const recorder::TapeSession& session) {
    std::vector<std::string> notes;
    for (const recorder::Record& record : session.records) {
        if (record.head.kind != RecordKind::kNote) continue;
        recorder::ValueReader values(record);
        const std::string word(values.Text());
        notes.push_back(word + ": " + std::string(values.Text()));
    }
    return notes;
}

std::size_t CountCalls(const recorder::TapeSession& session, recorder::Operation operation) {
    return static_cast<std::size_t>(std::ranges::count_if(session.records, [&](const auto& record) {
        return record.Is(RecordKind::kCall, operation);
    }));
}

TEST_F(RecorderBetween, TapeAndWatchLeaveTheSceneAsItIs) {
    const std::string plain = SceneBy(hello_);
    EXPECT_EQ(SceneBy(hello_, " --tape a.tape --watch=strict"), plain);
    const recorder::TapeSession session = OnlySession("a.tape");
    const std::vector<std::string> expected = {
        "settings: 30 160 0 1",
        "step: press 1046",
        "step: time 0.5",
        "step: save a.scene",
        "saved: " + recorder::DigestOfFile(File("a.scene")) + " a.scene",
        "step: undo",
        "step: redo"};
    EXPECT_EQ(NotesOf(session), expected);
    EXPECT_EQ(CountCalls(session, recorder::Operation::CSnapshot_SetWorldTransform), 61U);
}

TEST_F(RecorderBetween, LibraryInTheCoresPlaceDoesTheSameAnywhere) {
    const std::string plain = SceneBy(hello_);
    const std::string module =
        TakePlace("core = real.core\r\ntape=my.tape # here\nlimit = 16M\nwatch = yes");
    EXPECT_EQ(SceneBy(module), plain);
    EXPECT_EQ(
        CountCalls(OnlySession("vendor/my.tape"), recorder::Operation::CSnapshot_SetWorldTransform),
        61U);
    EXPECT_NE(Read("vendor/my.tape.txt").find("the watch has found nothing"), std::string::npos);
    Do("run a.scene --core " + Quoted(module) + " --do \"press 1046\" --do \"expect nodes 1\"");
    EXPECT_EQ(recorder::ReadTape(File("vendor/my.tape")).sessions.size(), 2U);
}

// Whatever is wrong with its settings, the Core works.
TEST_F(RecorderBetween, LibraryTellsMistakesInItsSettingsAndWorks) {
    const std::string plain = SceneBy(hello_);
    Write("vendor.txt", "");
    const std::vector<std::pair<const char*, const char*>> kMistakes = {
        {"tape = no/folder/my.tape", "no"},
        {"tape = real.core", "real.core"},
        {"limit = 3 bytes", "recorder.txt:2: \"3 bytes\" is no size from 8M on"},
        {"limit = 1M", "recorder.txt:2: \"1M\" is no size"},
        {"watch = maybe", "recorder.txt:2: \"maybe\" is neither yes nor no"},
        {"tape = %NO_SUCH_HOME%/my.tape", "recorder.txt:2: there is no variable NO_SUCH_HOME"},
        {"tap = my.tape", "recorder.txt:2: \"tap = my.tape\" is no setting"},
        {"tape", "recorder.txt:2: \"tape\" is no setting"}};
    for (const auto& [line, told] : kMistakes) {
        const std::string module = TakePlace("core = real.core\n" + std::string(line));
        EXPECT_EQ(SceneBy(module), plain) << line;
        const Ending ending = Run("run --core " + Quoted(module));
        EXPECT_EQ(std::ranges::count(ending.error, '\n'), 1) << line << '\n' << ending.error;
        EXPECT_NE(ending.error.find(told), std::string::npos) << line << '\n' << ending.error;
    }
    EXPECT_NE(Read("vendor/recorder-report.txt").find("no/folder"), std::string::npos);
}

TEST_F(RecorderBetween, LibraryWithoutACoreIsACoreThatCannot) {
    const std::string self = fs::path(RECORDER_MODULE).filename().string();
    const std::vector<std::pair<std::string, std::string>> kAbsent = {
        {"", "names the Core"},
        {"core = nowhere", "the Core cannot be loaded"},
        {"core = " + self, "is the recorder itself"}};
    for (const auto& [line, why] : kAbsent) {
        const Ending ending = Run("run --core " + Quoted(TakePlace(line)));
        EXPECT_EQ(ending.status, 1) << line;
        EXPECT_NE(ending.error.find("getVersion threw: "), std::string::npos) << ending.error;
        EXPECT_NE(ending.error.find(why), std::string::npos) << ending.error;
    }
}

TEST_F(RecorderBetween, OptionsThatCannotBeMeantAreRefused) {
    Write("a.scene", "no tape");
    const std::string run = "run --core " + Quoted(hello_);
    ExpectRefusal(run + " --tape a.scene", "", 1);
    EXPECT_EQ(Read("a.scene"), "no tape");
    ExpectRefusal(run + " --tape new.scene --do \"save new.scene\"", "--tape: new.scene is", 2);
    ExpectRefusal(run + " --tape a.tape --tape-limit 7M", "--tape-limit: 7M is less than 8M", 2);
    ExpectRefusal(run + " --tape a.tape --tape-limit 1T", "--tape-limit: \"1T\" is no size", 2);
    ExpectRefusal(run + " --tape-limit 1G", "", 2);
    ExpectRefusal(run + " --watch=often", "", 2);
    ExpectRefusal("open a.scene --no-core --watch", "", 2);
}

TEST_F(RecorderBetween, WatchTellsWhatItFindsAndIsStrictIfAsked) {
    const std::string words = "run --core " + Quoted(STRAY_CORE) + " --do \"press 1046\"";
    const Ending mild = Run(words + " --watch");
    EXPECT_EQ(mild.status, 0) << mild.error;
    EXPECT_EQ(mild.error.find("Watch: "), 0U) << mild.error;
    const Ending strict = Run(words + " --watch=strict --json");
    EXPECT_EQ(strict.status, 1);
    const Json findings = Json::parse(strict.out)["findings"];
    for (const Ending* ending : {&mild, &strict})
        ASSERT_EQ(findings.size(),
                  static_cast<std::size_t>(std::ranges::count(ending->error, '\n')));
    EXPECT_EQ(findings[0]["operation"], "ShowCore");
}

}  // namespace
