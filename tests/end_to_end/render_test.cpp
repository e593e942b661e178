#include <filesystem>

#include "headless/viewport.h"
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Pictures of scenes, from the command line to the pixels.

namespace {

TEST_F(Command, DrawsAScenesSameBytesAtEachRunAndFromASavedCopy) {
    const std::string scene = File("take.scene");
    const std::string copy = File("copy.scene");
    Do("record " + Write("walk.bvh", Walk(5)) + " --scene " + scene);
    Do("open " + scene + " --save " + copy);
    const std::string looks = " --time 0.1 --size 320x240 --names -o ";
    EXPECT_EQ(Do("render " + scene + looks + File("a.png")),
              File("a.png") + ": a picture of 320x240 pixels\n");
    Do("render " + scene + looks + File("b.png"));
    Do("render " + copy + looks + File("c.png"));
    Do("render " + scene + " --wire" + looks + File("wire.png"));
    const std::string bytes = Read(File("a.png"));
    EXPECT_EQ(bytes.rfind("\x89PNG\r\n\x1a\n", 0), 0u);
    EXPECT_EQ(Read(File("b.png")), bytes);
    EXPECT_EQ(Read(File("c.png")), bytes);
    EXPECT_NE(Read(File("wire.png")), bytes);

    Do("render " + scene + " --frames 2:6:2 --size 64x48 -o " + File("at%04d.png"));
    for (const char* name : {"at0002.png", "at0004.png", "at0006.png"})
        EXPECT_TRUE(std::filesystem::exists(File(name))) << name;
    EXPECT_EQ(
        Do("render " + scene + " --frames 0:4:1 --sheet 2 --size 64x48 -o " + File("sheet.png")),
        File("sheet.png") + ": a picture of 128x144 pixels\n");
}

TEST_F(Command, DrawsAGuideObjectAndKeepsItWhereThePlugInIsMissing) {
    const std::string scene = File("guide.scene");
    EXPECT_EQ(Do("draw --guide --ground 20 --segments 2 --color 0,0.5,1 --solid -o " + scene),
              "Drew Tarvo_Helper01 (1) into " + scene + ": 1 node\n");
    const auto pictureOf = [&](const std::string& drawn, const std::string& company) {
        Do("render " + drawn + company + " --time 0 --size 160x120 -o " + File("a.png"));
        return Read(File("a.png"));
    };
    const std::string picture = pictureOf(scene, "");
    EXPECT_NE(pictureOf(scene, " --no-plugin"), picture);
    for (const char* company : {"", " --no-plugin"}) {
        const std::string copy = File("copy.scene");
        const std::string told = Do("open " + scene + company + " --save " + copy);
        EXPECT_EQ(told.find("of 1 object is not loaded; kept as stored") != std::string::npos,
                  *company != 0)
            << told;
        EXPECT_EQ(pictureOf(copy, ""), picture);
    }

    Stage stage;
    ASSERT_EQ(stage.Host().OpenScene(scene).error, "");
    headless::ViewportSettings settings;
    settings.showsGrid = false;
    const auto batches = headless::DrawScene(settings, 0).list.batches;
    ASSERT_EQ(batches.size(), 1U);
    EXPECT_TRUE(batches[0].isTriangles);
    EXPECT_EQ(batches[0].vertices.size(), 3 * 8U);
    EXPECT_EQ(batches[0].vertices[0].colour, (headless::Colour{0, 0.5F, 1}));
}

TEST_F(Command, RefusesPicturesThatCannotBeAndLeavesNoFile) {
    const std::string scene = File("take.scene");
    const std::string twice = File("twice.scene");
    const std::string file = File("a.png");
    Do("record " + Write("walk.bvh", Walk(2)) + " --scene " + scene);
    Do("merge " + scene + ' ' + scene + " --by-host --save " + twice);
    struct Wrong {
        std::string words;
        std::string error;
    };
    for (const Wrong& wrong :
         {Wrong{"", ""}, Wrong{"--time 1 --frames 0:1:1", ""}, Wrong{"--time soon", "--time: "},
          Wrong{"--time 1 --size 320", "--size: 320 is not"},
          Wrong{"--time 1 --size 15x9000", "--size: a picture is 16 to 8,192 pixels"},
          Wrong{"--time 1 --sheet 2", ""}, Wrong{"--time 1 --camera ''", "--camera: "},
          Wrong{"--frames 0:4:0", "--frames: 0:4:0 has no step above 0"},
          Wrong{"--frames 10:0:1", "--frames: 10:0:1 has its last frame before the first"},
          Wrong{"--frames 0:4:1 --sheet x", "--sheet: x is not a whole number"},
          Wrong{"--frames 0:4:1 --sheet 513", "--sheet: 513 is not from 1 to 512"},
          Wrong{"--frames 0:4", "--frames: 0:4 is not"},
          Wrong{"--frames 0:4:1", "-o: " + file + " has no place for the number of a frame"},
          Wrong{"--frames 0:9999:1 --sheet 2", "--sheet: 10000 pictures make a sheet of "}})
        ExpectFailure(Run("render " + scene + " -o " + file + " " + wrong.words), wrong.error, 2);
    const auto fails = [&](const std::string& drawn, const std::string& camera,
                           const std::string& why) {
        ExpectFailure(Run("render " + drawn + " -o " + file + " --time 1 --camera " + camera),
                      drawn + ": no picture: " + why);
    };
    fails(scene, "Nobody", "no node is called \"Nobody\"");
    fails(scene, "walk_Hip", "the node \"walk_Hip\" is no camera");
    fails(twice, "walk_Camera", "2 cameras are called \"walk_Camera\"");
    EXPECT_FALSE(std::filesystem::exists(file));
    ExpectFailure(Run("render " + scene + " --time 1 -o " + File("no/a.png")),
                  File("no/a.png") + ": the file cannot be written");
}

}  // namespace
