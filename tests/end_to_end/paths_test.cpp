#include "platform/modules.h"
#include "tests/end_to_end/command.h"
#include "tvl/installation.h"

// Paths on their way through registry, command, host, plug-in, Core and files: each is taken as it
// stands, or refused in one line that tells it, and what is refused leaves nothing behind.
namespace {

namespace fs = std::filesystem;

// The longest path that every program can be sure of, with its NUL.
constexpr std::size_t kLongest = FILENAME_MAX;
constexpr std::size_t kRoomToMakeFolders = 12;  // Windows wants room for a short name in them

class Paths : public Command {
  protected:
    static fs::path Real(const std::string& path) { return platform::FromNarrow(path); }

    // Below `folder` a copy of the Core, as an installer would leave it.
    void InstallCore(const std::string& folder) {
        core_ = folder;
        const fs::path core = Real(folder) / "Core";
        std::error_code error;
        fs::create_directories(core, error);
        const std::string file = platform::ModuleFile("Core64");
        fs::copy_file(fs::path(CORE_FOLDER) / "Core" / file, core / file, error);
    }

    // A path of `length` bytes below the test's folder. The folders on the way are there as far as
    // any program could list them.
    std::string LongPath(std::size_t length) const {
        constexpr std::size_t kStep = 100;
        std::string path = File("");
        while (path.size() + 2 * kStep < length) {
            path += std::string(kStep - 1, 'd') + '/';
            std::error_code error;
            if (path.size() + kRoomToMakeFolders < kLongest)
                fs::create_directory(Real(path), error);
        }
        return path + std::string(length - path.size(), 'f');
    }
};

// Blanks, letters beyond ASCII, and one that stands at another place in code pages than in Latin-1.
TEST_F(Paths, WithBlanksAndLettersGoTheWholeRoad) {
    const std::string letters = platform::ToNarrow(u8"J\u00F6rg's  \u20AC takes \u00E9");
    if (letters.empty()) GTEST_SKIP() << "the code page lacks a letter";
    documents_ = File(letters);
    InstallCore(documents_);
    fs::create_directories(Real(documents_) / "Tarvo Works" / "Lumiset" / "data");
    const auto mark = static_cast<char>(fs::path::preferred_separator);
    const auto below = [&](const std::string& name) {
        return '"' + documents_ + (name.size() % 2 == 0 ? mark : '/') + name + letters + '"';
    };
    Write(letters + "/walk " + letters, Walk(5));
    const std::string take = below("take ");
    Do("record " + below("walk ") + " --scale 1 --scene " + take + " --csv " + below("places") +
       " --poses " + below("poses ") + " --trace " + below("trace "));
    // In place of itself, which goes over an old file.
    Do("open " + take + " --save " + take);
    const std::string merged = Do("merge " + take + " " + take + " --save " + below("both"));
    EXPECT_NE(merged.find("walk " + letters + " 2: 3 nodes"), std::string::npos) << merged;
    const auto files = Files();
    for (const std::string name : {"take ", "places", "poses ", "trace ", "both"})
        EXPECT_TRUE(files.contains(name + letters)) << name;
    EXPECT_EQ(files.size(), 7U) << "with the capture and the Core";
    EXPECT_TRUE(fs::exists(Real(documents_) / "Tarvo Works/Lumiset/data/adaptor_3dsmax9"));
}

TEST_F(Paths, ThatAreLongAreWrittenWholeOrRefused) {
    Write("walk.bvh", Walk(2));
    for (const std::size_t length : {259U, 260U, 1100U, 4090U, 4096U})
        for (const std::string option : {"--scene ", "--csv ", "--poses ", "--trace "}) {
            const std::string path = LongPath(length);
            const std::string words = "record walk.bvh --scale 1 " + option + '"' + path + '"';
            const bool isSure = length < kLongest;
            const bool isTaken = Run(words).status == 0;
            EXPECT_TRUE(isTaken || !isSure) << words;
            if (!isTaken) ExpectRefusal(words, path + ": ", 1);
            // What is longer and yet was taken need not show in a list of files.
            if (!isTaken || isSure) {
                EXPECT_EQ(Files().size(), isTaken ? 2U : 1U) << words;
            }
            std::error_code absent;
            fs::remove(Real(path), absent);
        }
}

TEST_F(Paths, OfTheCoreAreTakenWholeOrTold) {
    Write("walk.bvh", Walk(2));
    constexpr std::size_t kRoom = TVL::kLongestInstallPath;
    const std::size_t library = std::string(TVL::kCoreLibrary).size();
    for (const std::size_t length : {200U, 300U, 1023U, 1024U, 1500U}) {
        InstallCore(LongPath(length));
        const Ending ending = Run("record walk.bvh --scene scene --trace trace");
        const bool isShort = length <= kRoom && length + library < kLongest;
        EXPECT_TRUE(ending.status == 0 || !isShort) << length << ending.error;
        EXPECT_EQ(fs::remove(File("scene")), ending.status == 0);
        if (ending.status == 0) continue;
        EXPECT_TRUE(ending.error.starts_with("lumiset-headless: the Core could not be attached ("));
        EXPECT_NE(ending.error.find(core_), std::string::npos) << ending.error;
        EXPECT_NE(length <= kRoom,
                  Read("trace").find("datapath: longer than 1,023 bytes") != std::string::npos);
    }
}

}  // namespace
