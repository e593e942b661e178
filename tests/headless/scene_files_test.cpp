#include <filesystem>
#include <functional>
#include <list>
#include <stdexcept>
#include <string>

#include "host/notify.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/on_notification.h"

namespace {

namespace fs = std::filesystem;

// Writes down what is announced of work on files, and can act on it.
class SceneFilesTest : public HostWorld {
  protected:
    SceneFilesTest() {
        for (const int code : {NOTIFY_SYSTEM_PRE_RESET, NOTIFY_SYSTEM_PRE_NEW, NOTIFY_FILE_PRE_OPEN,
                               NOTIFY_FILE_POST_OPEN, NOTIFY_FILE_POST_MERGE, NOTIFY_FILE_PRE_SAVE,
                               NOTIFY_FILE_POST_SAVE})
            listeners_.emplace_back(code, [this](const NotifyInfo& info) {
                announced_ += std::to_string(info.intcode) + ' ';
                if (onAnnounced) onAnnounced(info);
            });
        AddNodes(2);
        EXPECT_EQ(session.SaveScene(saved).error, "");
        Announced();
    }

    void AddNodes(int nodes) {
        for (; nodes > 0; --nodes)
            Add("node");
    }
    std::string Announced() { return std::exchange(announced_, {}); }

    // Nothing that would replace or add to the scene begins.
    void ExpectRefusals(const std::string& reason) {
        const std::string none = folder.File("none.scene");
        for (const std::string& error :
             {session.OpenScene(saved).error, session.SaveScene(none).error,
              session.MergeScene(saved).error})
            EXPECT_NE(error.find(reason), std::string::npos) << error;
        EXPECT_EQ(host.MergeFromFile(saved.c_str()), 0);
        session.NewScene();
        session.Reset();
        EXPECT_FALSE(fs::exists(none));
    }

    TemporaryFolder folder;
    const std::string saved = folder.File("saved.scene");  // a scene of two nodes
    std::function<void(const NotifyInfo&)> onAnnounced;

  private:
    std::string announced_;
    std::list<OnNotification> listeners_;
};

TEST_F(SceneFilesTest, EachWorkIsAnnouncedInTheHostsOrderAndOneThatIsRefusedToNobody) {
    const auto before = headless::SceneDigest();
    EXPECT_EQ(session.SaveScene(saved).error, "");
    EXPECT_EQ(Announced(), "13 14 ");
    Step([&] { AddNodes(1); });
    const std::string cut = folder.Write("cut.scene", ReadFile(saved).substr(0, 99));
    for (const std::string& path : {cut, folder.File("missing.scene"), folder.Path().string()})
        for (const auto& [error, complaints] : {session.OpenScene(path), session.MergeScene(path)})
            EXPECT_TRUE(error.starts_with(path + ": ")) << error;
    EXPECT_EQ(host.MergeFromFile(nullptr), 0);
    EXPECT_EQ(Announced(), "");
    EXPECT_EQ(session.UndoLabels().size(), 1U);

    theHold.Begin();
    AddNodes(1);
    onAnnounced = [&](const NotifyInfo& info) {
        if (info.intcode != NOTIFY_FILE_PRE_OPEN) return;
        EXPECT_EQ(*static_cast<int*>(info.callParam), 0) << "it replaces the scene";
    };
    EXPECT_EQ(session.OpenScene(saved).error, "");
    EXPECT_EQ(Announced(), "9 10 ");
    EXPECT_EQ(headless::SceneDigest(), before);
    EXPECT_TRUE(!theHold.Holding() && session.UndoLabels().empty());
    EXPECT_EQ(session.MergeScene(saved).error, "");
    EXPECT_EQ(Announced(), "12 ");
    EXPECT_EQ(headless::Nodes().size(), 4U);
}

TEST_F(SceneFilesTest, TheEndOfASaveIsAnnouncedHoweverItWent) {
    const auto size = fs::file_size(saved);
    AddNodes(1);
    for (const int failing : {NOTIFY_FILE_PRE_SAVE, NOTIFY_FILE_POST_SAVE}) {
        onAnnounced = [&](const NotifyInfo& info) {
            if (info.intcode == failing) throw std::runtime_error("no paper");
        };
        const headless::FileOutcome outcome = session.SaveScene(saved);
        EXPECT_EQ(Announced(), "13 14 ");
        const bool isDone = failing == NOTIFY_FILE_POST_SAVE;
        const std::string told = isDone ? outcome.complaints.at(0) : outcome.error;
        EXPECT_NE(told.find("no paper"), std::string::npos) << told;
        EXPECT_EQ(fs::file_size(saved) == size, !isDone);
    }
}

TEST_F(SceneFilesTest, WhileOneFileIsWorkedOnNoOtherWorkBegins) {
    onAnnounced = [&](const NotifyInfo& info) {
        if (info.intcode != NOTIFY_FILE_POST_OPEN) return ExpectRefusals("another scene file");
        // What is announced as done is done.
        onAnnounced = {};
        EXPECT_EQ(session.MergeScene(saved).error, "");
        EXPECT_EQ(session.SaveScene(folder.File("four.scene")).error, "");
    };
    EXPECT_EQ(session.SaveScene(saved).error, "");
    EXPECT_EQ(session.OpenScene(saved).error, "");
    EXPECT_EQ(Announced(), "13 14 9 10 12 13 14 ");
    EXPECT_EQ(headless::Nodes().size(), 4U);
}

struct AtUndoAndRedo final : RestoreObj {
    explicit AtUndoAndRedo(std::function<void()> does) : act(std::move(does)) {}
    void Restore(int) override { act(); }
    void Redo() override { act(); }

    std::function<void()> act;
};

TEST_F(SceneFilesTest, StepsStayAroundAMergeAndKeepTheirScene) {
    Step([&] {
        AddNodes(1);
        theHold.Put(new AtUndoAndRedo([&] { ExpectRefusals("a step is being undone or redone"); }));
    });
    EXPECT_EQ(session.MergeScene(saved).error, "");
    EXPECT_TRUE(session.Undo());
    EXPECT_EQ(headless::Nodes().size(), 4U);
    EXPECT_TRUE(session.Redo());
    EXPECT_EQ(headless::Nodes().size(), 5U);
    EXPECT_EQ(Announced(), "12 ");
}

}  // namespace
