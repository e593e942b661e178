#include "tests/end_to_end/command.h"

// What the command cannot do it refuses in one line that names it, and changes nothing.

namespace {

namespace fs = std::filesystem;

// What a person typed, and how the line begins.
using Refusals = std::vector<std::pair<std::string, std::string>>;

const Refusals kCalledWrongly = {
    {"", "a verb is missing"},
    {"record", "CAPTURE"},
    {"record walk.bvh --sideways", "record has no option --sideways ("},
    {"record walk.bvh --scal 3", "record has no option --scal; --scale is the nearest"},
    {"record walk.bvh --scale", "--scale: its value is missing"},
    {"record walk.bvh --scale 1 --scale 1", "--scale: it is said twice"},
    {"rendr take --time 0 -o none", "there is no verb \"rendr\"; render is the nearest"},
    {"--by-host merge take take -o none", "--by-host: it stands behind the verb merge"},
    {"open take render", "\"render\" is one argument too many: lumiset-headless open SCENE"},
    {"open take --no-core=3", "--no-core: it takes no value"},
    {"open take --core none --no-core", "--core and --no-core do not go together"},
    {"help --sideways", "help has no option --sideways"},
    {"help rendr", "there is no verb \"rendr\"; render is the nearest"},
    {"record walk.bvh --scale -1", "--scale: "},
    {"record walk.bvh --scale 2e6", "--scale: "},
    {"record walk.bvh x.bvh --csv x", "--csv: "},
    {"record walk.bvh --from 1,5", "--from: expected the number of a frame, or seconds as 2.5s"},
    {"record walk.bvh --from 1 --to 0", "--to: expected nothing before 1, found '0'"},
    {"record walk.bvh --start soon", "--start: expected a time in seconds, found 'soon'"},
    {"record walk.bvh --height 0", "--height: 0 is not above 0"},
    {"record walk.bvh --height 1 --scale 1", "--scale and --height do not go together"},
    {"record walk.bvh --fps 7", "--fps: a second of the host's has 4800 ticks, which 7"},
    {"record walk.bvh --fps 25 --into take", "--into and --fps do not go together"},
    {"record walk.bvh --units 100 --into take", "--units and --into do not go together"},

    {"info \"\"", "SCENE: the name of a file is empty"},
    {"sample take --times 0:1e9:1", "--times: expected"},
    // Nothing is written over what is read, or twice.
    {"record walk.bvh --scene ./walk.bvh", "--output: ./walk.bvh"},
    {"record walk.bvh --trace ./walk.bvh", "--trace: ./walk.bvh"},
    {"record walk.bvh --into take --poses take", "--poses: "},
    {"record walk.bvh --scene table --csv table", "--csv: "},
    {"sample take --times 0:1:1 --csv take", "--output: take is the file of SCENE too"},
    {"render take --time 0 -o take", "--output: "},
    {"draw  -o none", "exactly one of"},

    {"draw --ground 1 --segments x -o none", "--segments: \"x\" is not a whole number"},
    {"draw --path 1,2,3 -o none", "--path: "},
    {"draw --path \"1,2,3 4,5\" -o none", "--path: \"4,5\" "},
    {"draw --sphere 1 --at 1,2,nan -o none", "--at: "},
    {"draw --sphere 1 --at 1,2,1e39 -o none", "--at: \"1,2,1e39\" is out of range"},
    {"draw --sphere 1 --guide --color 1,0,1.5 -o none", "--color: \"1,0,1.5\" is not a colour"},

    {"draw --sphere 1 --guide --bend 3 -o none", "--bend and --guide do not go together"},
    {"view take -o none.png", "--output: none.png does not end in .html or .htm"},
    {"render take -o none --time 1 --sheet 2", "--sheet is said only with --frames"},

    {"render take -o none --time 1 --size 15x9000", "--size: a picture is 16 to 8,192 pixels"},
    {"render take -o none --frames 0:4:0", "--frames: 0:4:0 has no step above 0"},
    {"render take -o none --frames 10:0:1", "--frames: 10:0:1 has its last frame before the first"},
    {"render take -o none.png --frames 0:4:1",
     "--output: none.png has no place for the number of a frame"},
    {"render take -o none.png --frames 0:4:1 --sheet 513", "--sheet: 513 is not from 1 to 512"},
    {"render take -o none.jpg --time 1", "--output: none.jpg does not end in .png"},
    {"render take -o none.png --time 1 --follow", "--follow is said only with --frames"},
    {"render take -o none.png --time 1 --take walk", "--take is said only with --frames"},
    {"render take -o none.png --time 1 --view below", "--view: \"below\" is not quarter, front"},
    {"render take -o none.png --time 1 --camera A --view top",
     "--camera and --view do not go together"}};

// What is well said and yet cannot be done. Two of the files may only be read.
const Refusals kFailing = {
    {"record cut.bvh --csv none", "cut.bvh:"},
    {"record walk.bvh --trace nowhere/a", "nowhere/a: "},
    {"record walk.bvh --csv folder", "folder: it is no plain file"},
    {"record walk.bvh --poses table", "table: it is read-only"},
    {"record absent.bvh cut.bvh --scene none", "absent.bvh: "},
    {"record flat.bvh --height 2", "flat.bvh: the figure has no height in frame 0, by which --h"},
    {"record walk.bvh --to 2",
     "walk.bvh: the capture ends with frame 1, at 0.05 s, before frame 2"},
    {"record no*.bvh", "no*.bvh: no file has such a name"},
    {"record folder", "folder: this folder holds no capture (.bvh)"},
    {"open take --save locked", "locked: the file cannot be written: it is read-only"},
    {"open take --save nowhere/a", "nowhere/a: "},
    {"inspect take --node Bal", "take: no node is called \"Bal\""},
    {"sample take --node absent --times 0:1:1", "no node of the Core's is called \"absent\""},
    {"sample take --times 0:1:1 --csv nowhere/a", "nowhere/a: "}};

TEST_F(Command, RefusesInOneLineEachWhatCannotBeDoneAndChangesNoFile) {
    Write("walk.bvh", Walk(2));
    Write("cut.bvh", Walk(5).substr(0, Walk(5).size() - 8));
    Write("flat.bvh", With(With(Walk(2), " -0.5 ", " 0 "), " -0.5 ", " 0 "));
    Do("record walk.bvh --scene take");
    std::string changed = Read("take");
    changed[changed.size() / 2] ^= 1;
    Write("changed", changed);
    Write("foreign", "no scene at all");
    fs::create_directory(File("folder"));
    for (const char* locked : {"locked", "table"})
        fs::permissions(Write(locked, "kept"), fs::perms::owner_read);
    const auto before = Files();

    for (const auto& [words, what] : kCalledWrongly)
        ExpectRefusal(words, what, 2);
    for (const auto& [words, what] : kFailing)
        ExpectRefusal(words, what, 1);
    for (const std::string& broken :
         {std::string("changed"), std::string("foreign"), std::string("absent"),
          std::string(300, 'f'), std::string(4300, 'f')})
        for (const char* const words :
             {"open % --save none", "open % --no-plugin --save none", "merge % take --save none",
              "merge take % --save none", "merge take % --by-host --save none",
              "convert % --save none", "info %", "sample % --times 0:1:1 --csv none",
              "render % --time 0 -o none.png"}) {
            const std::string line = ExpectRefusal(With(words, "%", broken), broken + ": ", 1);
            const bool saves = std::string_view(words).find(" none") != std::string_view::npos;
            EXPECT_EQ(line.ends_with("; nothing was saved\n"), saves) << line;
        }
    EXPECT_TRUE(ExpectRefusal("open take -o locked", "locked: ", 1)
                    .ends_with("; nothing was saved, locked is as it was\n"));
    EXPECT_EQ(Files(), before);
    for (const char* locked : {"locked", "table"})
        fs::permissions(File(locked), fs::perms::owner_all);
}

}  // namespace
