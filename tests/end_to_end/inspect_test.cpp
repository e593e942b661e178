#include <numbers>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// What the Core tells of nodes, its own and those that a person drew.

namespace {

class Inspect : public Command {
  protected:
    Json Node(const std::string& words) const { return Ask("inspect " + words)["nodes"].at(0); }
};

TEST_F(Inspect, WhatWasDrawnIsSeenAsItIsAtEachTimeInItsOwnUnits) {
    const std::string triangle = "drawn --path \"0,0,0 30,0,0 30,40,0\"";
    Do("draw --sphere 20 --segments 64 --bend 45 --name Ball -o drawn");
    for (const std::string& words :
         {std::string("drawn --ground 100 --segments 3 --name Ground"),
          triangle + " --closed --at 1,2,-3 --name Closed", triangle + " --smooth --name Smooth"})
        Do("draw " + words + " -o drawn");
    const Json straight = Node("drawn --node Ball");
    EXPECT_EQ(Line(straight, {"lends", "mesh/bounds/least", "mesh/bounds/most"}),
              R"(["transform","helper","mesh"] [-20.0,-20.0,-20.0] [20.0,20.0,20.0])");
    // The axis, 40 long, is a quarter of a circle by then, whose radius is where the pole has gone.
    const Json bent = Node("drawn --node Ball --time 2")["mesh"];
    EXPECT_EQ(bent["faces"], straight["mesh"]["faces"]);
    EXPECT_NEAR(bent["bounds"]["most"][1].get<double>(), 80 / std::numbers::pi, 1e-4);

    EXPECT_EQ(Node("drawn --node Ground")["mesh"]["faces"], 18);
    const Json closed = Node("drawn --node Closed");
    EXPECT_EQ(closed["lends"].back(), "shape");
    EXPECT_NEAR(closed["shape"]["curveLengths"][0].get<double>(), 120, 0.012);
    const double length = Node("drawn --node Smooth")["shape"]["curveLengths"][0];
    EXPECT_TRUE(length > 71 && length < 80) << length;
    const std::vector<double> world = closed["transform"]["world"];
    for (const auto& [cell, place] : {std::pair(12, 1), {13, -3}, {14, -2}})
        EXPECT_NEAR(world[static_cast<std::size_t>(cell)] * kUnitsPerMetre, place, 1e-6);
}

}  // namespace
