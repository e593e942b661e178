#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <numbers>
#include <string>
#include <vector>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// What the Core tells of nodes, its own and those that a person drew.

namespace {

using Json = nlohmann::json;

class Inspect : public Command {
  protected:
    Json Node(const std::string& scene, const std::string& name,
              const std::string& more = "") const {
        return Json::parse(Do("inspect " + scene + " --node " + name + " --json" + more))["nodes"]
            .at(0);
    }
};

TEST_F(Inspect, WhatWasDrawnIsSeenAsItIsAtEachTimeInItsOwnUnits) {
    const std::string scene = File("drawn.scene");
    const std::string triangle = "--path \"0,0,0 30,0,0 30,40,0\"";
    Do("draw --sphere 20 --segments 64 --bend 45 --name Ball -o " + scene);
    Do("draw " + scene + " --ground 100 --segments 3 --name Ground -o " + scene);
    Do("draw " + scene + ' ' + triangle + " --closed --at 1,2,-3 --name Closed -o " + scene);
    Do("draw " + scene + ' ' + triangle + " --smooth --name Smooth -o " + scene);
    const Json straight = Node(scene, "Ball");
    EXPECT_EQ(straight["lends"], Json::parse(R"(["transform", "helper", "mesh"])"));
    EXPECT_EQ(straight["mesh"]["bounds"]["least"], (std::vector<double>{-20, -20, -20}));
    EXPECT_EQ(straight["mesh"]["bounds"]["most"], (std::vector<double>{20, 20, 20}));
    // The axis, 40 long, is a quarter of a circle by then, whose radius is where the pole has gone.
    const Json bent = Node(scene, "Ball", " --time 2")["mesh"];
    EXPECT_EQ(bent["faces"], straight["mesh"]["faces"]);
    EXPECT_NEAR(bent["bounds"]["most"][1].get<double>(), 80 / std::numbers::pi, 1e-4);

    EXPECT_EQ(Node(scene, "Ground")["mesh"]["faces"], 18);
    const Json closed = Node(scene, "Closed");
    EXPECT_EQ(closed["lends"].back(), "shape");
    EXPECT_NEAR(closed["shape"]["curveLengths"][0].get<double>(), 120, 0.012);
    const double length = Node(scene, "Smooth")["shape"]["curveLengths"][0].get<double>();
    EXPECT_TRUE(length > 71 && length < 80) << length;
    const std::vector<double> world = closed["transform"]["world"];
    const std::vector<double> place = {1, -3, -2};
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(world[12 + axis] * kUnitsPerMetre, place[axis], 1e-6);
}

TEST_F(Inspect, ARecordedTakeAndItsCameraAreSeenAlsoBesideWhatWasDrawnIntoTheirScene) {
    const std::string scene = File("take.scene");
    Do("record " + Write("walk.bvh", Walk(3)) + " --scale 1 --scene " + scene);
    const std::string take = Do("open " + scene);
    Do("draw " + scene + " --sphere 5 -o " + scene);
    EXPECT_EQ(Do("open " + scene), take.substr(0, take.find("3 nodes")) + "4 nodes" +
                                       take.substr(take.find("3 nodes") + 7));
    const Json camera = Node(scene, "walk_Camera");
    EXPECT_EQ(camera["lends"], Json::parse(R"(["transform", "lens"])"));
    EXPECT_EQ(camera["lens"]["fieldOfViewType"], 1);
    EXPECT_GT(camera["lens"]["targetDistance"].get<double>(), 0);
    const Json knee = Node(scene, "walk_Knee");
    EXPECT_EQ(knee["parent"], "walk_Hip");
    EXPECT_NEAR(knee["transform"]["local"][13].get<double>(), -kUnitsPerMetre / 2, 1e-4);
    ExpectFailure(Run("inspect " + scene + " --node Bal"), scene + ": no node is called \"Bal\"");
    ExpectFailure(Run("inspect " + scene + " --time 1e31"), "--time: ", 2);
}

TEST_F(Inspect, WhatCannotBeDrawnIsNamedAndNothingIsWritten) {
    struct Wrong {
        std::string words;
        std::string what;
    };
    for (const Wrong& wrong :
         {Wrong{"", "exactly one of"}, Wrong{"--sphere 1 --ground 1", "exactly one of"},
          Wrong{"--sphere 1e300", "--sphere: 1e300 is out of range"},
          Wrong{"--ground -1", "--ground: "}, Wrong{"--sphere 1 --segments 1025", "--segments: "},
          Wrong{"--ground 1 --segments 0", "--segments: "}, Wrong{"--path 1,2,3", "--path: "},
          Wrong{"--path \"1,2,3 4,5\"", "--path: \"4,5\" "},
          Wrong{"--sphere 1 --segments x", "--segments: x is not a whole number"},
          Wrong{"--sphere 1 --at 1,2,nan", "--at: "},
          Wrong{"--sphere 1 --at 1,2,1e39", "--at: \"1,2,1e39\" is out of range"},
          Wrong{"--sphere 1 --guide --color 1,0,1.5", "--color: \"1,0,1.5\" is not a colour"},
          Wrong{"--sphere 1 --color 1,0,0", "--color requires --guide"},
          Wrong{"--sphere 1 --guide --bend 3", "--bend excludes --guide"},
          Wrong{"--sphere 1 --bend inf", "--bend: "}, Wrong{"--sphere 1 --closed", "--closed "}})
        ExpectFailure(Run("draw " + wrong.words + " -o " + File("none")), wrong.what, 2);
    EXPECT_FALSE(std::filesystem::exists(File("none")));
}

TEST(Inspection, ANodeThatIsNotThereIsToldInItsEntryAndLookingChangesNothing) {
    Stage stage;
    stage.Record(stage.WriteFile("walk.bvh", Walk(3)));
    const std::uint64_t before = headless::SceneDigest();
    stage.Tell("LUMISET_INSPECT", "999\n" + std::to_string(View("walk_Hip").handle));
    auto report = stage.Press();
    EXPECT_EQ(report["status"], "ok") << report["error"];
    EXPECT_EQ(report["look.1.isThere"], "0");
    EXPECT_FALSE(report.contains("look.1.name"));
    EXPECT_EQ(report["look.2.name"], "walk_Hip");
    EXPECT_EQ(headless::SceneDigest(), before);
    stage.Tell("LUMISET_INSPECT", "walk_Hip");
    EXPECT_EQ(stage.Press()["error"].rfind("LUMISET_INSPECT: ", 0), 0U);
}

}  // namespace
