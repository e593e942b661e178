#include <list>
#include <regex>

#include "headless/scene_file_view.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

// Writes down what is announced of work on files, and can act on it.
class SceneFilesTest : public HostWorld {
  protected:
    SceneFilesTest() {
        for (int code = NOTIFY_SYSTEM_PRE_RESET; code <= NOTIFY_FILE_POST_SAVE; ++code)
            listeners_.emplace_back(code, [this](const NotifyInfo& info) {
                told += std::to_string(info.intcode) + ' ';
                if (onAnnounced) onAnnounced(info);
            });
        Add("node");
        EXPECT_EQ(session.SaveScene(saved).error, "");
        ExpectTold("13 14 ");
    }

    TemporaryFolder folder;
    const std::string saved = folder.File("saved.scene");
    std::function<void(const NotifyInfo&)> onAnnounced;

  private:
    std::list<OnNotification> listeners_;
};

TEST_F(SceneFilesTest, EachWorkIsAnnouncedInTheHostsOrderAndOneThatIsRefusedToNobody) {
    const auto before = headless::SceneDigest();
    Step([&] { Add("node"); });
    const std::string cut = folder.Write("cut.scene", ReadFile(saved).substr(0, 99));
    for (const std::string& path : {cut, folder.File("missing.scene"), folder.Path().string()})
        for (const auto& [error, complaints] : {session.OpenScene(path), session.MergeScene(path)})
            EXPECT_TRUE(error.starts_with(path + ": ")) << error;
    EXPECT_EQ(host.MergeFromFile(nullptr), 0);
    ExpectTold("");
    EXPECT_EQ(session.UndoLabels().size(), 1U);

    theHold.Begin();
    Add("node");
    EXPECT_EQ(session.OpenScene(saved).error, "");
    ExpectTold("9 10 ");
    EXPECT_EQ(headless::SceneDigest(), before);
    EXPECT_TRUE(!theHold.Holding() && session.UndoLabels().empty());
}

TEST_F(SceneFilesTest, TheEndOfASaveIsAnnouncedHoweverItWent) {
    const auto size = fs::file_size(saved);
    Add("node");
    for (const int failing : {NOTIFY_FILE_PRE_SAVE, NOTIFY_FILE_POST_SAVE}) {
        onAnnounced = [&](const NotifyInfo& info) {
            if (info.intcode == failing) throw std::runtime_error("no paper");
        };
        const headless::FileOutcome outcome = session.SaveScene(saved);
        ExpectTold("13 14 ");
        const bool isDone = failing == NOTIFY_FILE_POST_SAVE;
        const std::string reason = isDone ? outcome.complaints.at(0) : outcome.error;
        EXPECT_NE(reason.find("no paper"), std::string::npos) << reason;
        EXPECT_EQ(fs::file_size(saved) == size, !isDone);
    }
}

TEST_F(SceneFilesTest, WhileOneFileIsWorkedOnNoOtherWorkBegins) {
    const std::string other = folder.File("other.scene");
    bool isDone = false;
    onAnnounced = [&](const NotifyInfo& info) {
        if (isDone) return;
        isDone = info.intcode == NOTIFY_FILE_POST_OPEN;
        for (const std::string& error :
             {session.MergeScene(saved).error, session.SaveScene(other).error})
            EXPECT_EQ(error.find("another scene file") == std::string::npos, isDone) << error;
        EXPECT_EQ(host.MergeFromFile(saved.c_str()) != 0, isDone);
        EXPECT_EQ(fs::exists(other), isDone);
        session.NewScene();
    };
    EXPECT_EQ(session.SaveScene(saved).error, "");
    EXPECT_EQ(session.OpenScene(saved).error, "");
    ExpectTold("13 14 9 10 12 13 14 12 7 ");
}

// Given up at each moment at which the session asks, and then not any more.
TEST_F(SceneFilesTest, WhatIsGivenUpLosesNothing) {
    for (const char* name : {"second", "third"})
        Add(name);
    const auto files = [&] { return std::distance(fs::directory_iterator(folder.Path()), {}); };
    const std::string bytes = ReadFile(saved);
    const auto workOn = [&](int work) {
        return work == 0   ? session.OpenScene(saved).error
               : work == 1 ? session.MergeScene(saved).error
                           : session.SaveScene(saved).error;
    };
    for (const int work : {0, 1, 2}) {
        const auto before = headless::SceneDigest();
        int givenUp = 0;
        for (std::string error = "none yet"; !error.empty(); ++givenUp) {
            int asked = 0;
            session.OnProgress([&](const headless::FileProgress& file) {
                EXPECT_EQ(file.path, saved);
                EXPECT_LE(file.done, file.whole);
                return asked++ != givenUp;
            });
            error = workOn(work);
            session.OnProgress({});
            if (error.empty()) break;
            EXPECT_TRUE(error.starts_with(saved + ": given up when ")) << error;
            EXPECT_EQ(headless::SceneDigest(), before);
            EXPECT_EQ(ReadFile(saved), bytes);
            EXPECT_EQ(files(), 1);
            ExpectTold(work == 2 ? "13 14 " : "");
        }
        EXPECT_GE(givenUp, work == 0 ? 4 : 5) << "it was hardly asked";
        if (work < 2) {
            ExpectTold(work == 0 ? "9 10 " : "12 ");
            session.NewScene();
            for (const char* name : {"node", "second", "third"})
                Add(name);
            told.clear();
        }
    }
}

// What a file holds ------------------------------------------------------------------------------

using SceneFileViewTest = HostWorld;

TEST_F(SceneFileViewTest, EachChangeIsToldInItsOwnWordsAndADamagedFileIsNamed) {
    const TemporaryFolder folder;
    const std::string first = folder.File("first.scene");
    const std::string second = folder.File("second.scene");
    const auto compare = [&](headless::CachedKeys keys) {
        return headless::CompareSceneFiles(first, second, keys);
    };
    // A line each, as the scene is now. Handles, which go on from test to test, are left out.
    const auto differences = [&] {
        EXPECT_EQ(session.SaveScene(second).error, "");
        std::string lines;
        for (const auto& [place, what] : compare(headless::CachedKeys::kLeftOut))
            lines += place + ": " + what + '\n';
        return std::regex_replace(lines, std::regex(R"( \(\d+\))"), "");
    };
    INode* const hip = Add("Hip");
    INode* const knee = Add("Knee", hip);
    auto* const camera = host.CreateCameraObject(0);
    INode* const eye = host.CreateObjectNode(camera);
    INode* const gone = Add("Gone");
    AnimateOn();
    for (const TimeValue t : {160, 4800})
        Place(knee, {2, 0, 0}, t);
    hip->SetUserPropString("TVL_tag", "<tag/>");
    hip->SetUserPropString("long", std::string(100, 'x') + "1");
    EXPECT_EQ(session.SaveScene(first).error, "");
    EXPECT_EQ(headless::ViewSceneFile(first).nodes.at(0).tagBytes, 6U);
    EXPECT_EQ(differences(), "");

    session.SetRange({0, 320});
    hip->SetUserPropString("new", "a\"b");
    hip->SetUserPropString("long", std::string(100, 'x') + "2");
    Place(knee, {2, 4, 3}, 4800);
    AnimateOff();
    knee->Detach(0, 0);
    knee->SetName("Knee\n2");
    eye->Hide(true);
    eye->SetWireColor(0xC0C0C1);
    camera->SetConeState(1);
    camera->SetFOV(0, 1);
    host.DeleteNode(gone, false);
    Add("New");
    EXPECT_EQ(differences(),
              R"(settings: last tick of the range 16000 and 320
node "Hip": property "long" from byte 100 on: "xxxxxxxxxx1" and "xxxxxxxxxx2"
node "Hip": property "new" "a\"b" only in the second file
node "Knee": name "Knee" and "Knee\n2"
node "Knee": parent node "Hip" and none
node "Camera01": stands at another place among the nodes
node "Camera01": hidden 0 and 1
node "Camera01": colour 12632256 and 12632257
node "Gone": only in the first file
node "New": only in the second file
)"
              R"(node "Knee", transform controller: 2 and 2 keys, which differ )"
              "from tick 4800 on; furthest apart at tick 4800, by 5 host units\n"
              R"(node "Camera01", object: 26 and 26 bytes, which differ from byte 14 on
node "Camera01", object, reference 0, reference 0: 26 and 26 bytes, which differ from byte 22 on
)");

    // A merged node has a new handle, and is still the same node below the same parents.
    session.Reset();
    EXPECT_EQ(session.MergeScene(first).error, "");
    const std::string renumbered = differences();
    const std::regex expected("(.*: (handle \\d+ and \\d+|selected 0 and 1)\n)+");
    EXPECT_TRUE(std::regex_match(renumbered, expected)) << renumbered;
    fs::resize_file(second, fs::file_size(second) - 1);
    EXPECT_THROW(compare(headless::CachedKeys::kCompared), std::runtime_error);
}

}  // namespace
