#include "recorder/watch/watch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "headless/core_seat.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "platform/process.h"
#include "recorder/recorder.h"
#include "recorder/stream/notes.h"
#include "tests/recorder/random_records.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/mistakes/mistakes.h"
#include "tvl/panel.h"

using namespace recorder;

namespace {

// A Core in its seat with a watch between.
class Watched final : public headless::CoreBetween {
  public:
    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) override {
        return recorder_.Attach(adaptor, [&](TVL::AdaptorInterface* proxy) {
            stream_.Note(note::kSettings, "30 160 0 1");
            return attach(proxy);
        });
    }
    void Detach(CoreInterface* core, const DetachCore& detach) override {
        recorder_.Detach(core, detach);
    }

    Watch watch;
    Kept kept;

  private:
    struct Filled : Stream {
        Filled(Watch& watch, Kept& kept) {
            Add(watch);
            Add(kept);
        }
    } stream_{watch, kept};
    Recorder recorder_{stream_, "mistakes"};
};

void SelectAll(headless::Session& session) {
    std::vector<std::string> names;
    for (const headless::NodeView& node : headless::Nodes())
        names.push_back(node.name);
    session.Select(names);
}

// A day of a person with that Core: takes, undo, saving, deleting, another scene.
void Live(const std::string& scene) {
    headless::Session session;
    session.OnMessageBox([](const auto&) {});
    EXPECT_EQ(session.LoadPlugin(PLUGIN_MODULE), "");
    session.Start();
    session.OpenUtility(TVL::kPanelUtility);
    const auto press = [&] { EXPECT_TRUE(session.PressButton(TVL::kStartButton)); };
    press();
    session.SetTime(480);
    press();
    session.Undo();
    session.Redo();
    session.SaveScene(scene);
    SelectAll(session);
    session.DeleteSelected();
    session.Undo();
    session.SaveScene(scene);
    session.OpenScene(scene);
    press();
    session.SaveScene(scene);
    session.ShutDown();
}

std::string Told(const std::vector<Finding>& findings) {
    std::string lines;
    for (const Finding& finding : findings)
        lines += Line(finding) + '\n';
    return lines;
}

// The mistake is made as `between` watches.
void Make(const char* mistake, Watched& between) {
    const TemporaryFolder folder;
    PlaceRegistry(folder, {});
    platform::SetVariable(mistakes::kVariable, mistake);
    const headless::CoreSeat seat(MISTAKES_CORE, between);
    Live(folder.File("watched.scene"));
}

TEST(TheWatch, NamesEachMistakeAndNothingElse) {
    std::vector<mistakes::Mistake> rows(std::begin(mistakes::kMistakes),
                                        std::end(mistakes::kMistakes));
    rows.push_back({"", ""});
    for (const mistakes::Mistake& row : rows) {
        SCOPED_TRACE(row.name);
        Watched between;
        Make(row.name, between);
        EXPECT_TRUE(between.watch.HasSeenAll());
        const auto& findings = between.watch.Findings();
        EXPECT_EQ(findings.empty(), std::string_view(row.rule).empty());
        for (const Finding& finding : findings)
            EXPECT_EQ(finding.rule, row.rule) << Told(findings);
    }
}

using Words = std::vector<std::uint64_t>;

void Take(Watch& watch, const Words& words) {
    RecordHead head;
    std::memcpy(static_cast<void*>(&head), words.data(), sizeof head);
    watch.Take({head, std::span(words).subspan(kHeadWords)}, std::as_bytes(std::span(words)));
}

std::vector<Words> RecordsOf(const char* mistake) {
    Watched between;
    Make(mistake, between);
    std::vector<Words> records;
    for (const std::string& bytes : between.kept.records) {
        records.emplace_back(bytes.size() / 8);
        std::memcpy(records.back().data(), bytes.data(), bytes.size());
    }
    return records;
}

TEST(TheWatch, IsBlindAndNeverWrongWhereARecordIsMissing) {
    const std::vector<Words> records = RecordsOf("does what is allowed");
    for (std::size_t missing = 0; missing < records.size(); ++missing) {
        Watch watch;
        for (std::size_t index = 0; index < records.size(); ++index)
            if (index != missing) Take(watch, records[index]);
        EXPECT_TRUE(watch.Findings().empty()) << missing << '\n' << Told(watch.Findings());
        EXPECT_EQ(watch.HasSeenAll(), missing + 1 == records.size()) << missing;
    }
}

// Words of one record in place of those of another: objects that are others, or no objects at all.
TEST(TheWatch, TakesRecordsThatMakeNoSense) {
    const std::vector<Words> records = RecordsOf("does what is allowed");
    std::mt19937 random(16);
    const auto anyOf = [&](auto& list) -> auto& {
        return list[random() % list.size()];
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<Words> mixed = records;
        for (int change = 0; change < 20; ++change) {
            Words& words = anyOf(mixed);
            const std::size_t place = random() % 2 == 0 ? 2 : random() % words.size();
            if (place > 1 && place != 3) words[place] = anyOf(anyOf(records));
        }
        Watch watch;
        for (const Words& words : mixed)
            Take(watch, words);
    }
}

// The node, and with it a snapshot, is made and ends.
void LiveShortly(Stream& stream, std::uint64_t number) {
    const ObjectId node = MakeObjectId(ObjectKind::kNode, 2 * number);
    const ObjectId snapshot = MakeObjectId(ObjectKind::kSnapshot, 2 * number + 1);
    const auto make = [&](Operation operation, ObjectId on, ObjectId answered,
                          const auto&... said) {
        stream.Answer(stream.Call(operation, on, said...), operation, on, answered);
    };
    make(Operation::CNode_GetParent, MakeObjectId(ObjectKind::kNode, 1), node);
    make(Operation::CoreNode_AcquireSnapshot, node, snapshot, 0.5);
    make(Operation::CoreNode_ReleaseSnapshot, node, 0, snapshot);
    make(Operation::CoreNode_Destroy, node, 0);
}

TEST(TheWatch, ForgetsWhatEndedLongAgo) {
    Watch watch;
    Stream stream;
    stream.Add(watch);
    stream.BeginSession({"", 0, "", "", ""});
    for (std::uint64_t number = 1; number <= 10'000; ++number)
        LiveShortly(stream, number);
    const auto use = [&](std::uint64_t number) {
        const ObjectId snapshot = MakeObjectId(ObjectKind::kSnapshot, 2 * number + 1);
        stream.Call(Operation::CSnapshot_GetTime, snapshot);
        stream.Call(Operation::CoreNode_GetName, MakeObjectId(ObjectKind::kNode, 2 * number));
    };
    use(1);
    EXPECT_TRUE(watch.Findings().empty()) << Told(watch.Findings());
    use(9'000);
    EXPECT_EQ(watch.Findings().size(), 1U);
}

TEST(TheWatch, CountsARepeatAndPrintsItOnce) {
    const Finding once{"null-owner", Operation::CoreNode_Claim, "", "", 1, 17, 20};
    const Finding often{"unit-factor",
                        Operation::CSnapshot_SetWorldTransform,
                        "Hand",
                        "1 long, and 0.0254 was read",
                        12,
                        482,
                        2310};
    EXPECT_EQ(Line(once), "null-owner: Claim, once, at 0.020 s (call 17): a node needs an owner");
    EXPECT_TRUE(Line(often).starts_with(
        "unit-factor: SetWorldTransform on Hand, 12 times, first at 2.310 s (call 482): "));
    EXPECT_TRUE(Line(often).ends_with("; 1 long, and 0.0254 was read"));
    EXPECT_EQ(Table(std::vector{once, often}),
              "rule         call               node  times  first\n"
              "null-owner   Claim                    1      0.020 s, call 17\n"
              "unit-factor  SetWorldTransform  Hand  12     2.310 s, call 482\n");
    EXPECT_EQ(Table({}), "");
}

}  // namespace
