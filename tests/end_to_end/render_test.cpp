#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// Pictures of scenes, from the command line to the pixels.

namespace {

TEST_F(Command, DrawsAScenesSameBytesAtEachRunAndFromASavedCopy) {
    Write("walk.bvh", Walk(5));
    Do("record walk.bvh --scene take");
    Do("open take --save copy");
    const auto pictureOf = [this](const std::string& words) {
        EXPECT_EQ(Do("render " + words + " --time 0.1 --size 320x240 --names -o a.png"),
                  "a.png: a picture of 320x240 pixels\n");
        return Read("a.png");
    };
    const std::string bytes = pictureOf("take");
    EXPECT_TRUE(bytes.starts_with("\x89PNG\r\n\x1a\n"));
    EXPECT_TRUE(pictureOf("take") == bytes && pictureOf("copy") == bytes);
    EXPECT_NE(pictureOf("take --wire"), bytes);
    Do("render take --frames 2:6:2 --size 64x48 -o at%04d.png");
    for (const char* name : {"at0002.png", "at0004.png", "at0006.png"})
        EXPECT_NE(Read(name), "") << name;
    EXPECT_EQ(Do("render take --frames 0:4:1 --sheet 2 --size 64x48 -o sheet.png"),
              "sheet.png: a picture of 128x144 pixels\n");

    Do("merge take take --by-host --save twice");
    ExpectRefusal("render take -o none --frames 0:9999:1 --sheet 2", "--sheet: 10000 pictures", 2);
    ExpectRefusal("render take --time 1 -o nowhere/a", "nowhere/a: the file cannot be written", 1);
    for (const auto& [words, why] :
         {std::pair<std::string, std::string>{"take --camera Nobody",
                                              "no node is called \"Nobody\""},
          {"take --camera walk_Hip", "the node \"walk_Hip\" is no camera"},
          {"twice --camera walk_Camera", "2 cameras are called \"walk_Camera\""}})
        ExpectRefusal("render " + words + " --time 1 -o none",
                      words.substr(0, words.find(' ')) + ": no picture: " + why, 1);
    EXPECT_EQ(Read("none"), "");
}

TEST_F(Command, DrawsAGuideObjectAndKeepsItWhereThePlugInIsMissing) {
    EXPECT_EQ(Do("draw --guide --ground 20 --segments 2 --color 0,0.5,1 --solid -o guide"),
              "Drew Tarvo_Helper01 (1) into guide: 1 node\n");
    Do("draw --guide --ground 20 --segments 2 --color 1,0.5,0 --solid -o other");
    const auto pictureOf = [this](const std::string& words) {
        Do("render " + words + " --time 0 --size 160x120 -o a.png");
        return Read("a.png");
    };
    const std::string picture = pictureOf("guide");
    EXPECT_NE(pictureOf("guide --no-plugin"), picture);
    EXPECT_NE(pictureOf("other"), picture);
    for (const std::string guests : {"", " --no-plugin"}) {
        const std::string told = Do("open guide --save copy" + guests);
        EXPECT_EQ(told.find("of 1 object is not loaded; kept as stored") == std::string::npos,
                  guests.empty())
            << told;
        EXPECT_EQ(pictureOf("copy"), picture);
    }
}

}  // namespace
