#include <filesystem>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/gup.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/on_notification.h"
#include "tests/support/test_class.h"

namespace {

namespace fs = std::filesystem;
using Diary = std::vector<std::string>;

constexpr std::uint16_t kTextChunk = 7;

// A global utility that writes down what the host tells it, and can act on it.
struct Diarist final : GUP {
    static constexpr int kCodes[] = {
        NOTIFY_SYSTEM_PRE_RESET, NOTIFY_SYSTEM_PRE_NEW, NOTIFY_FILE_PRE_OPEN, NOTIFY_FILE_POST_OPEN,
        NOTIFY_FILE_POST_MERGE,  NOTIFY_FILE_PRE_SAVE,  NOTIFY_FILE_POST_SAVE};

    std::uint32_t Start() override {
        for (const int code : kCodes)
            heard.emplace_back(code, [this](NotifyInfo& info) { Hear(info); });
        return GUPRESULT_KEEP;
    }
    void Stop() override { heard.clear(); }
    void DeleteThis() override {}

    IOResult Save(ISave* save) override {
        Note("save");
        if (text.empty()) return IO_OK;
        save->BeginChunk(kTextChunk);
        save->WriteCString(text.c_str());
        return save->EndChunk();
    }
    IOResult Load(ILoad* load) override {
        Note("load " + std::to_string(headless::Nodes().size()) + " nodes");
        char* read = nullptr;
        if (load->OpenChunk() != IO_OK || load->ReadCStringChunk(&read) != IO_OK) return IO_ERROR;
        text = read;
        return load->CloseChunk();
    }

    void Note(const std::string& entry) {
        diary.push_back(entry);
        if (onEntry) onEntry(entry);
    }
    Diary Take() { return std::exchange(diary, {}); }

    void Hear(const NotifyInfo& info) {
        std::string entry = std::to_string(info.intcode);
        if (info.intcode == NOTIFY_FILE_PRE_OPEN)
            entry += " kind " + std::to_string(*static_cast<int*>(info.callParam));
        Note(entry);
    }

    std::string text = "dear diary";
    Diary diary;
    std::list<OnNotification> heard;
    std::function<void(const std::string&)> onEntry;
};

class SceneFilesTest : public testing::Test {
  protected:
    SceneFilesTest() {
        session.RegisterClass(&diaristClass);
        session.Start();
    }
    ~SceneFilesTest() override {
        session.ShutDown();
        EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
    }

    // A scene of that many nodes, and the diarist's text.
    std::string Saved(int nodes, const std::string& file = "saved.scene") {
        session.NewScene();
        Add(nodes);
        const std::string path = Path(file);
        EXPECT_EQ(session.SaveScene(path).error, "");
        diarist.Take();
        return path;
    }
    static void Add(int nodes) {
        for (int i = 0; i < nodes; ++i)
            GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
    }
    std::string Path(const std::string& file) const { return folder.File(file); }

    TemporaryFolder folder;
    Diarist diarist;
    TestClass diaristClass{"Diarist", GUP_CLASS_ID, {0x0D1A, 1}, [this] { return &diarist; }};
    headless::Session session;
};

TEST_F(SceneFilesTest, EachWorkIsAnnouncedInTheHostsOrder) {
    const std::string path = Saved(2);
    const auto saved = headless::SceneDigest();
    ASSERT_EQ(session.SaveScene(path).error, "");
    EXPECT_EQ(diarist.Take(), (Diary{"13", "save", "14"}));

    Add(1);
    diarist.text = "another";
    const headless::FileOutcome opened = session.OpenScene(path);
    EXPECT_EQ(opened.error, "");
    EXPECT_TRUE(opened.complaints.empty());
    EXPECT_EQ(diarist.Take(), (Diary{"9 kind 0", "load 2 nodes", "10"}));
    EXPECT_EQ(diarist.text, "dear diary");
    EXPECT_EQ(headless::SceneDigest(), saved);

    ASSERT_EQ(session.MergeScene(path).error, "");
    EXPECT_EQ(diarist.Take(), Diary{"12"});
    EXPECT_EQ(headless::Nodes().size(), 4U);
}

TEST_F(SceneFilesTest, AFileThatIsRefusedLeavesTheSceneAndNobodyHearsOfIt) {
    const std::string cut = Saved(2, "cut.scene");
    fs::resize_file(cut, fs::file_size(cut) / 2);
    theHold.Begin();
    Add(1);
    theHold.Accept("step");
    const auto before = headless::SceneDigest();
    for (const std::string& path : {cut, folder.Write("text.scene", "no scene at all"),
                                    Path("missing.scene"), folder.Path().string()}) {
        for (const std::string& error :
             {session.OpenScene(path).error, session.MergeScene(path).error}) {
            EXPECT_EQ(error.rfind(path + ": ", 0), 0U) << error;
            EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        }
    }
    EXPECT_EQ(diarist.Take(), Diary());
    EXPECT_EQ(headless::SceneDigest(), before);
    EXPECT_EQ(session.UndoLabels(), Diary{"step"});
    Interface& host = *GetCOREInterface();
    EXPECT_EQ(host.MergeFromFile(nullptr), 0);
    EXPECT_EQ(host.MergeFromFile(Path("missing.scene").c_str()), 0);
    EXPECT_THROW(host.MergeFromFile(cut.c_str()), std::runtime_error);
}

TEST_F(SceneFilesTest, TheEndOfASaveIsAnnouncedHoweverItWent) {
    const std::string path = Saved(1);
    const auto size = fs::file_size(path);
    for (const char* failing : {"13", "save", "14"}) {
        diarist.onEntry = [&](const std::string& entry) {
            if (entry == failing) throw std::runtime_error("no paper");
        };
        Add(1);
        const headless::FileOutcome saved = session.SaveScene(path);
        EXPECT_EQ(diarist.Take().back(), "14");
        const bool isDone = failing == std::string("14");
        EXPECT_EQ(saved.error.empty(), isDone);
        const std::string& told = isDone ? saved.complaints.at(0) : saved.error;
        EXPECT_NE(told.find("no paper"), std::string::npos) << told;
        EXPECT_EQ(fs::file_size(path) == size, !isDone);
    }
    diarist.onEntry = {};
    EXPECT_NE(session.SaveScene(Path("nowhere/scene")).error, "");
    EXPECT_EQ(diarist.Take().back(), "14");
}

TEST_F(SceneFilesTest, WhileOneFileIsWorkedOnNoOtherWorkBegins) {
    const std::string path = Saved(1);
    const std::string other = Path("other.scene");
    for (const char* moment : {"9 kind 0", "load 1 nodes", "13", "save", "14"}) {
        int refused = 0;
        diarist.onEntry = [&](const std::string& entry) {
            if (entry != moment) return;
            ++refused;
            for (const std::string& error :
                 {session.OpenScene(path).error, session.SaveScene(other).error,
                  session.MergeScene(path).error}) {
                EXPECT_NE(error.find("another scene file"), std::string::npos) << moment << error;
            }
            EXPECT_EQ(GetCOREInterface()->MergeFromFile(path.c_str()), 0);
            session.NewScene();
            session.Reset();
        };
        EXPECT_EQ(session.OpenScene(path).error, "");
        EXPECT_EQ(session.SaveScene(path).error, "");
        EXPECT_EQ(refused, 1) << moment;
        EXPECT_EQ(headless::Nodes().size(), 1U);
        EXPECT_FALSE(fs::exists(other));
    }
    // What is announced as done is done.
    diarist.onEntry = [&](const std::string& entry) {
        if (entry != "10" || headless::Nodes().size() > 1) return;
        EXPECT_EQ(session.MergeScene(path).error, "");
        EXPECT_EQ(session.SaveScene(other).error, "");
    };
    EXPECT_EQ(session.OpenScene(path).error, "");
    EXPECT_EQ(headless::Nodes().size(), 2U);
}

// Opens a file when it is undone.
struct Opening final : RestoreObj {
    Opening(headless::Session& running, std::string file)
        : session(running), path(std::move(file)) {}
    void Restore(int) override { error = session.OpenScene(path).error; }
    void Redo() override { session.Reset(); }

    headless::Session& session;
    std::string path;
    static inline std::string error;
};

TEST_F(SceneFilesTest, StepsStayAroundAMergeKeepTheirSceneAndGoWhenAnotherIsOpened) {
    const std::string path = Saved(2);
    const auto saved = headless::SceneDigest();
    session.NewScene();
    theHold.Begin();
    Add(1);
    session.Select({"Sphere01"});
    theHold.Put(new Opening(session, path));
    theHold.Accept("sphere");
    EXPECT_EQ(session.MergeScene(path).error, "");
    EXPECT_TRUE(session.Undo());
    EXPECT_NE(Opening::error.find("undone or redone"), std::string::npos) << Opening::error;
    EXPECT_EQ(headless::Nodes().size(), 2U);
    EXPECT_TRUE(session.Redo());
    EXPECT_EQ(headless::Nodes().size(), 3U);
    theHold.Begin();
    Add(2);
    EXPECT_EQ(session.OpenScene(path).error, "");
    EXPECT_FALSE(theHold.Holding());
    EXPECT_TRUE(session.UndoLabels().empty());
    EXPECT_EQ(headless::SceneDigest(), saved);
}

}  // namespace
