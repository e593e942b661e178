#include <set>

#include "tests/end_to_end/command.h"

// Pictures of scenes, from the command line to the pixels.

namespace {

class Render : public Command {
  protected:
    std::string PictureOf(const std::string& words) const {
        const std::string told = Do("render " + words + " --time 0.1 --size 160x120 -o a.png");
        EXPECT_TRUE(told.ends_with("a.png: a picture of 160x120 pixels\n")) << told;
        return Read("a.png");
    }
};

TEST_F(Render, DrawsAScenesSameBytesAtEachRunAndFromASavedCopy) {
    Write("walk.bvh", Walk(5));
    Do("record walk.bvh --scene take");
    Do("open take --save copy");
    const std::string bytes = PictureOf("take --names");
    EXPECT_TRUE(bytes.starts_with("\x89PNG\r\n\x1a\n"));
    EXPECT_TRUE(PictureOf("take --names") == bytes && PictureOf("copy --names") == bytes);
    EXPECT_NE(PictureOf("take --names --wire"), bytes);
    Do("render take --frames 2:6:2 --size 64x48 -o at%04d.png");
    for (const char* name : {"at0002.png", "at0004.png", "at0006.png"})
        EXPECT_NE(Read(name), "") << name;
    EXPECT_EQ(Do("render take --frames 0:4:1 --sheet 2 --size 64x48 -o sheet.png"),
              "Saved as sheet.png: a picture of 128x144 pixels\n");

    std::set<std::string> sheets;
    const std::vector<std::string> looks = {"",
                                            "--follow",
                                            "--each",
                                            "--cameras",
                                            "--view front",
                                            "--view side",
                                            "--view top",
                                            "--camera walk_Camera"};
    for (const std::string& look : looks) {
        Do("render take --frames 0:4:2 --sheet 3 --size 64x48 -o sheet.png " + look);
        sheets.insert(Read("sheet.png"));
    }
    EXPECT_EQ(sheets.size(), looks.size());
    Do("render take --frames 4:4:1 --size 64x48 -o one.png");
    Do("render take --frames 4:4:1 --size 64x48 --sheet 1 -o sheet.png");
    EXPECT_NE(Read("one.png"), Read("sheet.png")) << "which says frame and time";

    Do("render take --take walk --frames 4:4:1 --size 64x48 -o taken.PNG");
    Do("render take --time 0.2 --size 64x48 -o timed.png");
    EXPECT_TRUE(Read("taken.PNG") == Read("timed.png")) << "a frame of the capture lasts 0.05 s";
    ExpectRefusal("render take --take walk --frames 3:5:1 -o x%04d.png", "--frames: the take", 1);
    Do("record walk.bvh --scale 1 --from 2 --to 4 --start 0.1 -o part");
    Do("render part --take walk --frames 4:4:1 --size 64x48 -o taken.png");
    Do("render part --time 0.2 --size 64x48 -o timed.png");
    EXPECT_TRUE(Read("taken.png") == Read("timed.png")) << "frame 4, also where frame 2 is first";

    EXPECT_EQ(Do("render take --frames 0:2:1 --sheet 3 --size 16x16 --name walk_Hip -o sheet.png"),
              "Complaint: at 0.00 s and in 2 further pictures there is no room for the names of: "
              "walk_Hip\nSaved as sheet.png: a picture of 48x16 pixels\n");
    EXPECT_TRUE(PictureOf("take --camera walk_Camera --names") != bytes);
    EXPECT_TRUE(Do("render take --time 0 --camera walk_Camera --name walk_Camera -o a.png")
                    .starts_with("Complaint: at 0.00 s these are outside of the picture: "
                                 "walk_Camera\nSaved as a.png"));

    std::filesystem::create_directory(File("at0009.png"));
    EXPECT_TRUE(
        ExpectRefusal("render take --frames 7:9:1 --size 64x48 -o at%04d.png", "at0009.png: ", 1)
            .ends_with("; saved all the same: at0007.png, at0008.png\n"));

    Do("merge take take --by-host --save twice");
    ExpectRefusal("render take -o none.png --frames 0:9999:1 --sheet 2", "--sheet: 10000 pictures",
                  2);
    ExpectRefusal("render take -o at%04d.png --frames 0:2000000000:1000", "--frames: the scene's",
                  1);
    for (const auto& [words, why] :
         {std::pair("take --camera Nobody", "take: no picture: no node is called \"Nobody\""),
          {"take --name Hip",
           "take: no picture: no node is called \"Hip\"; walk_Hip is the nearest"},
          {"take --camera walk_Hip", "take: no picture: the node \"walk_Hip\" is no camera"},
          {"twice --camera walk_Camera", "twice: no picture: 2 cameras are called"}})
        ExpectRefusal(std::string("render --time 1 -o none.png ") + words, why, 1);
}

TEST_F(Render, DrawsAGuideObjectAndKeepsItWhereThePlugInIsMissing) {
    const std::string draw = "draw --guide --ground 20 --segments 2 --solid --color ";
    EXPECT_EQ(Do(draw + "0,0.5,1 -o guide"),
              "Drew Tarvo_Helper01 (1); in the scene: 1 node\nSaved as guide\n");
    Do(draw + "1,0.5,0 -o other");
    const std::string picture = PictureOf("guide");
    EXPECT_NE(PictureOf("guide --no-plugin"), picture);
    EXPECT_NE(PictureOf("other"), picture);
    const std::string told = Do("open guide --save copy --no-plugin");
    EXPECT_NE(told.find("of 1 object is not loaded; kept as stored"), std::string::npos) << told;
    EXPECT_EQ(PictureOf("copy"), picture);
}

}  // namespace
