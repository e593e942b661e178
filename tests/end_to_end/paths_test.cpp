#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "platform/modules.h"
#include "platform/process.h"
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"
#include "tvl/installation.h"

// Paths on their way through registry, command, host, plug-in, Core and files: each is taken as it
// stands, or refused in one line that tells it, and what is refused leaves nothing behind.
namespace {

namespace fs = std::filesystem;

// Blanks, letters beyond ASCII, and one that stands at another place in code pages than in Latin-1.
// Empty on a system whose code page has other letters.
std::string Letters() {
    return platform::ToNarrow(u8"J\u00F6rg's  \u20AC takes \u00E9");
}

// The longest path that every program can be sure of, with its NUL.
constexpr std::size_t kLongest = FILENAME_MAX;
constexpr std::size_t kRoomToMakeFolders = 12;  // Windows wants room for a short name in them

class Paths : public Command {
  protected:
    static fs::path Real(const std::string& path) { return platform::FromNarrow(path); }

    // Below `folder` a copy of the Core, as an installer would leave it.
    static void InstallCore(const std::string& folder) {
        const fs::path core = Real(folder) / "Core";
        std::error_code error;
        fs::create_directories(core, error);
        const std::string file = platform::ModuleFile("Core64");
        fs::copy_file(fs::path(CORE_FOLDER) / "Core" / file, core / file, error);
    }

    // A path of `length` bytes below the test's folder, with the ending given. The folders on the
    // way are there as far as any program could list them.
    std::string LongPath(std::size_t length, const std::string& ending) const {
        constexpr std::size_t kStep = 100;
        std::string path = File("");
        while (path.size() + 2 * kStep < length) {
            path += std::string(kStep - 1, 'd') + '/';
            std::error_code error;
            if (path.size() + kRoomToMakeFolders < kLongest)
                fs::create_directory(Real(path), error);
        }
        return path + std::string(length - path.size() - ending.size(), 'f') + ending;
    }

    // Whole files in the test's folder, the test's own left out.
    std::multiset<std::string> Files() const {
        std::multiset<std::string> names;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.Path()))
            if (entry.is_regular_file()) names.insert(platform::ToNarrow(entry.path().filename()));
        for (const char* own : {"test.reg", "out", "error"})
            names.erase(own);
        return names;
    }

    static std::string Quoted(const std::string& path) { return '"' + path + '"'; }
};

TEST_F(Paths, WithBlanksAndLettersGoTheWholeRoad) {
    const std::string letters = Letters();
    if (letters.empty()) GTEST_SKIP() << "the code page lacks a letter";
    documents_ = File(letters);
    InstallCore(documents_);
    fs::create_directories(Real(documents_) / "Tarvo Works" / "Lumiset" / "data");
    const auto below = [&](const std::string& name) {
        const auto mark = static_cast<char>(fs::path::preferred_separator);
        return Quoted(documents_ + (name.size() % 2 == 0 ? mark : '/') + name);
    };
    const auto run = [&](const std::string& words) { return Do(words, documents_); };
    const std::string capture = Write(letters + "/walk " + letters + ".bvh", Walk(5));
    const std::string take = below("take " + letters + ".scene");
    const std::string both = below("both " + letters + ".scene");

    const nlohmann::json recorded = nlohmann::json::parse(
        run("record " + Quoted(capture) + " --scale 1 --json --scene " + take + " --csv " +
            below("places " + letters) + " --poses " + below("poses  " + letters) + " --trace " +
            below("trace " + letters)));
    const std::u8string told = Real(capture).u8string();
    EXPECT_EQ(recorded["capture"], std::string(told.begin(), told.end()));
    // In place of itself, which goes over an old file.
    run("open " + take + " --save " + take);
    const std::string merged = run("merge " + take + " " + take + " --save " + both);
    EXPECT_NE(merged.find("walk " + letters + " 2: 3 nodes"), std::string::npos) << merged;
    run("sample " + both + " --times 0:0.2:0.05 --csv " + below("poses of both"));
    run("open " + both + " --save " + below("again"));
    run("diff " + both + " " + below("again"));
    EXPECT_EQ(Files(),
              (std::multiset<std::string>{
                  "walk " + letters + ".bvh", "take " + letters + ".scene", "places " + letters,
                  "poses  " + letters, "trace " + letters, "both " + letters + ".scene",
                  "poses of both", "again", platform::ModuleFile("Core64")}));
    EXPECT_TRUE(fs::exists(Real(documents_) / "Tarvo Works/Lumiset/data/adaptor_3dsmax9"));
}

TEST_F(Paths, ThatAreLongAreWrittenWholeOrRefused) {
    const std::string record = "record " + Quoted(Write("walk.bvh", Walk(2))) + " --scale 1 ";
    for (const std::size_t length : {259U, 260U, 300U, 1100U, 4090U, 4096U})
        for (const std::string option : {"--scene ", "--csv ", "--poses ", "--trace "}) {
            const std::string path = LongPath(length, ".scene");
            const Ending ending = Run(record + option + Quoted(path));
            std::multiset<std::string> left{"walk.bvh"};
            if (ending.status == 0)
                left.insert(platform::ToNarrow(Real(path).filename()));
            else
                ExpectFailure(ending, path + ": ");
            const bool isSure = length < kLongest;
            EXPECT_TRUE(ending.status == 0 || !isSure) << option << ending.error;
            // What is longer and yet was taken need not show in a list of files.
            if (ending.status != 0 || isSure) {
                EXPECT_EQ(Files(), left) << option << length;
            }
            if (ending.status == 0 && option == "--scene ") Do("info --no-plugin " + Quoted(path));
            std::error_code absent;
            fs::remove(Real(path), absent);
        }
}

TEST_F(Paths, ThatLeadNowhereAreToldWhateverTheirLength) {
    for (const std::size_t length : {300U, 1100U, 4300U}) {
        const std::string path = LongPath(length, ".bvh");
        const std::string quoted = Quoted(path);
        for (const char* verb : {"record ", "open ", "info "})
            ExpectFailure(Run(verb + quoted), path + ": ");
        ExpectFailure(Run("render " + quoted + " --time 0 -o " + Quoted(File("none"))),
                      path + ": ");
        ExpectFailure(Run("sample " + quoted + " --times 0:1:1"), path + ": ");
        ExpectFailure(Run("diff " + quoted + " " + quoted), path + ": ", 2);
    }
    EXPECT_TRUE(Files().empty());
}

TEST_F(Paths, OfTheCoreAreTakenWholeOrTold) {
    const std::string capture = Write("walk.bvh", Walk(2));
    constexpr std::size_t kRoom = TVL::kLongestInstallPath;
    const std::size_t library = std::string(TVL::kCoreLibrary).size();
    for (const std::size_t length : {200U, 300U, 1000U, 1023U, 1024U, 1500U}) {
        const std::string folder = LongPath(length, "");
        InstallCore(folder);
        const Ending ending = Run("record " + Quoted(capture) + " --scale 1 --scene " +
                                      Quoted(File("scene")) + " --trace " + Quoted(File("trace")),
                                  folder);
        const bool isShort = length <= kRoom && length + library < kLongest;
        EXPECT_TRUE(ending.status == 0 || !isShort) << length << ending.error;
        if (ending.status == 0) {
            fs::remove(File("scene"));
            continue;
        }
        ExpectFailure(ending, "the Core could not be attached (");
        EXPECT_NE(ending.error.find(folder), std::string::npos) << ending.error;
        EXPECT_FALSE(fs::exists(File("scene")));
        const std::string trace = Read(File("trace"));
        const std::string told =
            length <= kRoom ? "CORE library: " + folder : "datapath: longer than 1,023 bytes";
        EXPECT_NE(trace.find(told), std::string::npos) << trace;
    }
}

}  // namespace
