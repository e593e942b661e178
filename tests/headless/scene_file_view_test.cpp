#include "headless/scene_file_view.h"

#include <filesystem>
#include <regex>

#include "host/animate.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

class SceneFileViewTest : public HostWorld {
  protected:
    SceneFileViewTest() {
        Place(hip, {1, 0, 0});
        AnimateOn();
        Place(knee, {2, 0, 0}, 160);
        Place(knee, {3, 0, 0}, 4800);
        AnimateOff();
        hip->SetUserPropString("TVL_tag", "<tag/>");
    }

    void Save(const std::string& path) { EXPECT_EQ(session.SaveScene(path).error, ""); }

    std::vector<std::string> Differences() {
        std::vector<std::string> lines;
        for (const auto& difference :
             headless::CompareSceneFiles(first, second, headless::CachedKeys::kLeftOut))
            lines.push_back(WithoutHandles(difference.place + ": " + difference.what));
        return lines;
    }

    // Handles go on from test to test.
    static std::string WithoutHandles(const std::string& line) {
        return std::regex_replace(line, std::regex(R"( \(\d+\))"), "");
    }

    INode* hip = Add("Hip");
    INode* knee = Add("Knee", hip);
    INode* eye = host.CreateObjectNode(host.CreateCameraObject(0));
    TemporaryFolder folder;
    const std::string first = folder.File("first.scene");
    const std::string second = folder.File("second.scene");
};

TEST_F(SceneFileViewTest, AFileIsToldAsItsNodesAndClasses) {
    Save(first);
    const headless::SceneFileView file = headless::ViewSceneFile(first);
    ASSERT_EQ(file.nodes.size(), 3U);
    EXPECT_EQ(file.nodes[0].tagBytes, 6U);
    const headless::NodeInFile& node = file.nodes[1];
    EXPECT_EQ(node.name, "Knee");
    EXPECT_EQ(node.parent, hip->GetHandle());
    EXPECT_EQ(node.controller.name, "Position/Rotation/Scale");
    EXPECT_EQ(node.keys.count, 2);
    EXPECT_EQ(node.keys.last, 4800);
    EXPECT_EQ(file.nodes[2].object.superClass, CAMERA_CLASS_ID);
    for (const headless::ClassInFile& type : file.classes)
        EXPECT_TRUE(headless::IsClassLoaded(type)) << type.name;
    EXPECT_FALSE(headless::IsClassLoaded({0x50, {1, 2}, "Stranger"}));
}

TEST_F(SceneFileViewTest, EachChangeIsToldInItsOwnWords) {
    const std::string longValue(100, 'x');
    hip->SetUserPropString("long", longValue + "1");
    struct Case {
        std::function<void()> change;
        std::vector<std::string> words;
    };
    const Case cases[] = {
        {[] {}, {}},
        {[&] { knee->SetName("Knee\n2"); }, {"node \"Knee\": name \"Knee\" and \"Knee\\n2\""}},
        {[&] { knee->Detach(0, 0); },
         {"node \"Knee\": parent node \"Hip\" and none",
          "node \"Camera01\": stands at another place among the nodes"}},
        {[&] {
             eye->Hide(true);
             eye->SetWireColor(0xC0C0C1);
         },
         {"node \"Camera01\": hidden 0 and 1", "node \"Camera01\": colour 12632256 and 12632257"}},
        {[&] {
             hip->SetUserPropString("new", "a\"b");
             hip->SetUserPropString("long", longValue + "2");
         },
         {"node \"Hip\": property \"long\" from byte 100 on: \"xxxxxxxxxx1\" and "
          "\"xxxxxxxxxx2\"",
          "node \"Hip\": property \"new\" \"a\\\"b\" only in the second file"}},
        {[&] {
             AnimateOn();
             Place(knee, {3, 4, 3}, 4800);
             AnimateOff();
         },
         {"node \"Knee\", transform controller: 2 and 2 keys, which differ from tick 4800 on; "
          "furthest apart at tick 4800, by 5 host units"}},
        {[&] { static_cast<CameraObject*>(eye->GetObjectRef())->SetConeState(1); },
         {"node \"Camera01\", object: 26 and 26 bytes, which differ from byte 14 on"}},
        {[&] { static_cast<CameraObject*>(eye->GetObjectRef())->SetFOV(0, 1); },
         {"node \"Camera01\", object, reference 0, reference 0: 26 and 26 bytes, which differ "
          "from byte 22 on"}},
        {[&] {
             session.SetRange({0, 320});
         },
         {"settings: last tick of the range 16000 and 320"}},
        {[&] { Add("New"); }, {"node \"New\": only in the second file"}},
        {[&] { host.DeleteNode(eye, false); }, {"node \"Camera01\": only in the first file"}},
    };
    for (const Case& c : cases) {
        Save(first);
        Step(c.change);
        Save(second);
        EXPECT_EQ(Differences(), c.words);
        session.Undo();
    }
}

// A merged node has a new handle, and is still the same node below the same parents.
TEST_F(SceneFileViewTest, NodesUnderNewHandlesAreFoundByTheirPlaceAndADamagedFileIsNamed) {
    Save(first);
    session.NewScene();
    EXPECT_EQ(session.MergeScene(first).error, "");
    Save(second);
    for (const std::string& line : Differences())
        EXPECT_TRUE(std::regex_search(line, std::regex(": handle |: selected 0 and 1"))) << line;
    EXPECT_THROW(headless::ViewSceneFile(first + "none"), std::runtime_error);
    std::filesystem::resize_file(first, std::filesystem::file_size(first) - 1);
    EXPECT_THROW(headless::CompareSceneFiles(first, first, headless::CachedKeys::kCompared),
                 std::runtime_error);
}

}  // namespace
