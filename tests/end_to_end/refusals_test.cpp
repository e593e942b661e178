#include <filesystem>
#include <vector>

#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"

// What the command cannot do it refuses in one line that names it, and changes nothing.

namespace {

namespace fs = std::filesystem;

// What a person typed wrong, and how the line begins.
struct Refusal {
    std::string words;
    std::string what;
};

const std::vector<Refusal> kOfAnyVerb = {
    {"", "a verb is missing"},
    {"record", "CAPTURE"},
    {"record walk.bvh --sideways", "The following argument was not expected: --sideways"},
    {"record walk.bvh --scale -1", "--scale: "},
    {"record walk.bvh --scale 2e6", "--scale: "},
    {"record walk.bvh x.bvh --csv x", "--csv: "},
    {"record walk.bvh --csv \"\"", "--csv: the name of a file is empty"},
    {"record walk.bvh --units 100 --into take", "--"},
    {"merge a b --save \"\"", "--save: the name of a file is empty"},
    {"info \"\"", "SCENE: the name of a file is empty"},
    {"sample take --times 0:1e9:1", "--times: expected"},
};

// Nothing is written over what is read, or twice.
const std::vector<Refusal> kOfOnePlaceForTwo = {
    {"record walk.bvh --scene ./walk.bvh", "--scene: ./walk.bvh"},
    {"record walk.bvh --csv ./walk.bvh", "--csv: ./walk.bvh"},
    {"record walk.bvh --trace ./walk.bvh", "--trace: ./walk.bvh"},
    {"record walk.bvh --into take --poses take", "--poses: "},
    {"record walk.bvh --scene table --csv table", "--csv: "},
    {"sample take --times 0:1:1 --csv take", "--csv: "},
    {"render take --time 0 -o take", "-o: "},
};

const std::vector<Refusal> kOfDrawing = {
    {"", "exactly one of"},
    {"--sphere 1e300", "--sphere: 1e300 is out of range"},
    {"--ground -1", "--ground: "},
    {"--ground 1 --segments 0", "--segments: "},
    {"--path 1,2,3", "--path: "},
    {"--path \"1,2,3 4,5\"", "--path: \"4,5\" "},
    {"--sphere 1 --segments x", "--segments: x is not a whole number"},
    {"--sphere 1 --at 1,2,nan", "--at: "},
    {"--sphere 1 --bend inf", "--bend: "},
    {"--sphere 1 --at 1,2,1e39", "--at: \"1,2,1e39\" is out of range"},
    {"--sphere 1 --guide --color 1,0,1.5", "--color: \"1,0,1.5\" is not a colour"},
    {"--sphere 1 --color 1,0,0", "--color requires --guide"},
    {"--sphere 1 --guide --bend 3", "--bend excludes --guide"},
    {"--sphere 1 --closed", "--closed "},
};

const std::vector<Refusal> kOfPictures = {
    {"", ""},
    {"--time 1 --sheet 2", ""},
    {"--time soon", "--time: "},
    {"--time 1 --size 320", "--size: 320 is not"},
    {"--time 1 --size 15x9000", "--size: a picture is 16 to 8,192 pixels"},
    {"--time 1 --camera ''", "--camera: "},
    {"--frames 0:4:0", "--frames: 0:4:0 has no step above 0"},
    {"--frames 10:0:1", "--frames: 10:0:1 has its last frame before the first"},
    {"--frames 0:4", "--frames: 0:4 is not"},
    {"--frames 0:4:1", "-o: none has no place for the number of a frame"},
    {"--frames 0:4:1 --sheet 513", "--sheet: 513 is not from 1 to 512"},
};

// What is well said and yet cannot be done. Two of the files may only be read.
const std::vector<Refusal> kOfFiles = {
    {"record cut.bvh --csv none", "cut.bvh:"},
    {"record walk.bvh --trace nowhere/a", "nowhere/a: "},
    {"record walk.bvh --poses nowhere/a", "nowhere/a: "},
    {"record walk.bvh --csv folder", "folder: it is no plain file"},
    {"record walk.bvh --poses table", "table: it is read-only"},
    {"record walk.bvh absent.bvh --scene none", "absent.bvh"},
    {"open take --save locked", "locked: the file cannot be written: it is read-only"},
    {"open take --save nowhere/a", "nowhere/a: "},
    {"inspect take --node Bal", "take: no node is called \"Bal\""},
    {"sample take --node absent --times 0:1:1", "no node of the Core's is called \"absent\""},
    {"sample take --times 0:1:1 --csv nowhere/a", "nowhere/a: "},
};

TEST_F(Command, RefusesInOneLineEachWhatCannotBeDoneAndChangesNoFile) {
    const auto expectAll = [this](const std::vector<Refusal>& refusals, int status,
                                  const std::string& before = "", const std::string& behind = "") {
        for (const auto& [words, what] : refusals)
            ExpectRefusal(before + words + behind, what, status);
    };
    Write("walk.bvh", Walk(2));
    Write("cut.bvh", Walk(5).substr(0, Walk(5).size() - 8));
    Do("record walk.bvh --scene take");
    std::string changed = Read("take");
    changed[changed.size() / 2] ^= 1;
    Write("changed", changed);
    Write("foreign", "no scene at all");
    fs::create_directory(File("folder"));
    for (const char* locked : {"locked", "table"})
        fs::permissions(Write(locked, "kept"), fs::perms::owner_read);
    const auto before = Files();

    expectAll(kOfAnyVerb, 2);
    expectAll(kOfOnePlaceForTwo, 2);
    expectAll(kOfDrawing, 2, "draw ", " -o none");
    expectAll(kOfFiles, 1);
    expectAll(kOfPictures, 2, "render take -o none ");
    for (const std::string& broken :
         {std::string("changed"), std::string("foreign"), std::string("absent"),
          std::string(300, 'f'), std::string(4300, 'f')})
        for (const char* const words :
             {"open % --save none", "open % --no-plugin --save none", "merge % take --save none",
              "merge take % --save none", "merge take % --by-host --save none",
              "convert % --save none", "info %", "sample % --times 0:1:1 --csv none",
              "render % --time 0 -o none"})
            ExpectRefusal(std::string(words).replace(std::string(words).find('%'), 1, broken),
                          broken + ": ", 1);
    EXPECT_EQ(Files(), before);
    for (const char* locked : {"locked", "table"})
        fs::permissions(File(locked), fs::perms::owner_all);
}

}  // namespace
