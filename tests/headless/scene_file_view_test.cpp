#include "headless/scene_file_view.h"

#include <filesystem>
#include <regex>
#include <string>

#include "host/animate.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

class SceneFileViewTest : public HostWorld {
  protected:
    SceneFileViewTest() {
        for (const TimeValue t : {160, 4800})
            PlaceKnee({2, 0, 0}, t);
        hip->SetUserPropString("TVL_tag", "<tag/>");
        hip->SetUserPropString("long", std::string(100, 'x') + "1");
        EXPECT_EQ(session.SaveScene(first).error, "");
    }

    void PlaceKnee(const Point3& at, TimeValue t) {
        AnimateOn();
        Place(knee, at, t);
        AnimateOff();
    }

    // A line each, as the scene is now. Handles, which go on from test to test, are left out.
    std::string DifferencesNow() {
        EXPECT_EQ(session.SaveScene(second).error, "");
        std::string lines;
        for (const auto& [place, what] :
             headless::CompareSceneFiles(first, second, headless::CachedKeys::kLeftOut))
            lines += place + ": " + what + '\n';
        return std::regex_replace(lines, std::regex(R"( \(\d+\))"), "");
    }

    INode* hip = Add("Hip");
    INode* knee = Add("Knee", hip);
    INode* eye = host.CreateObjectNode(host.CreateCameraObject(0));
    INode* gone = Add("Gone");
    TemporaryFolder folder;
    const std::string first = folder.File("first.scene");
    const std::string second = folder.File("second.scene");
};

TEST_F(SceneFileViewTest, AFileIsToldAsItsNodesAndClasses) {
    const headless::SceneFileView file = headless::ViewSceneFile(first);
    ASSERT_EQ(file.nodes.size(), 4U);
    EXPECT_EQ(file.nodes[0].tagBytes, 6U);
    const headless::NodeInFile& node = file.nodes[1];
    EXPECT_EQ(node.name + ", " + node.object.name + ", " + node.controller.name,
              "Knee, Mesh, Position/Rotation/Scale");
    EXPECT_EQ(node.parent, hip->GetHandle());
    EXPECT_TRUE(node.keys.count == 2 && node.keys.first == 160 && node.keys.last == 4800);
    EXPECT_TRUE(headless::IsClassLoaded(node.object));
    EXPECT_FALSE(headless::IsClassLoaded({0x50, {1, 2}, "Stranger"}));
}

TEST_F(SceneFileViewTest, EachChangeIsToldInItsOwnWords) {
    EXPECT_EQ(DifferencesNow(), "");
    session.SetRange({0, 320});
    hip->SetUserPropString("new", "a\"b");
    hip->SetUserPropString("long", std::string(100, 'x') + "2");
    PlaceKnee({2, 4, 3}, 4800);
    knee->Detach(0, 0);
    knee->SetName("Knee\n2");
    eye->Hide(true);
    eye->SetWireColor(0xC0C0C1);
    static_cast<CameraObject*>(eye->GetObjectRef())->SetConeState(1);
    static_cast<CameraObject*>(eye->GetObjectRef())->SetFOV(0, 1);
    host.DeleteNode(gone, false);
    Add("New");
    EXPECT_EQ(DifferencesNow(),
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
}

// A merged node has a new handle, and is still the same node below the same parents.
TEST_F(SceneFileViewTest, NodesUnderNewHandlesAreFoundByTheirPlaceAndADamagedFileIsNamed) {
    session.NewScene();
    EXPECT_EQ(session.MergeScene(first).error, "");
    const std::string differences = DifferencesNow();
    const std::regex expected("(.*: (handle \\d+ and \\d+|selected 0 and 1)\n)+");
    EXPECT_TRUE(std::regex_match(differences, expected)) << differences;
    std::filesystem::resize_file(first, std::filesystem::file_size(first) - 1);
    EXPECT_THROW(headless::CompareSceneFiles(first, first, headless::CachedKeys::kCompared),
                 std::runtime_error);
}

}  // namespace
