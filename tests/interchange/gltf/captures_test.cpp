#include <cmath>

#include "tests/end_to_end/command.h"
#include "tests/interchange/gltf/read_back.h"

// What leaves a scene, read by a program that sees nothing of what wrote it, and recorded again.

namespace {

class CaptureElsewhere : public Command, public testing::WithParamInterface<Capture> {};

TEST_P(CaptureElsewhere, HasEveryNodeWhereTheHostHasIt) {
    const auto& [path, metresPerUnit] = GetParam();
    if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is missing";
    isWatched_ = false;  // other tests hold recordings against the contract
    const Json recorded =
        Ask("record " + path + " --scale " + metresPerUnit + " --take T -o scene --poses poses");
    const std::size_t frames = recorded.at("frames");
    Samples meant;
    for (const auto& [name, samples] : SamplesIn(Read("poses")))
        meant[name.substr(2)] = samples;
    for (const std::string file : {"take.glb", "take.gltf", "take.bvh"}) {
        SCOPED_TRACE(file);
        const bool isBvh = file.ends_with(".bvh");
        const Json told = Ask("export scene -o " + file).at("takes").at(0);
        EXPECT_EQ(told.at("frames"), frames);
        EXPECT_LT(told.at("furthestMetres"), 2e-6);
        EXPECT_EQ(told.at("notInTheFile").dump(), isBvh ? R"(["the camera \"Camera\""])" : "[]");
        if (isBvh) meant.erase("Camera");
        // This reader takes no file with two roots.
        if (isBvh && path.find("two_roots") != path.npos) continue;
        const ReadBack read(File(file));
        EXPECT_EQ(read.Names().size(), meant.size());
        EXPECT_LT(FurthestOff(meant, read.SamplesOf(frames)), 1e-5);
        const double step = told.at("frameSeconds");
        const std::vector<double> seconds = read.KeySeconds(0);
        ASSERT_EQ(seconds.size(), frames);
        for (std::size_t frame = 0; frame < frames; ++frame)
            ASSERT_NEAR(seconds[frame], step * double(frame), step / 100) << frame;
    }
    EXPECT_EQ(Ask("record take.bvh --scale 1 --take T --poses again").at("frames"), frames);
    Samples again;
    for (const auto& [name, samples] : SamplesIn(Read("again")))
        again[name.substr(2)] = samples;
    EXPECT_LT(FurthestOff(meant, again), 1e-5);
    if (!HasValidator()) GTEST_SKIP() << kNoValidator;
    EXPECT_EQ(Findings(folder_, {"take.glb", "take.gltf"}), "");
}

INSTANTIATE_TEST_SUITE_P(All, CaptureElsewhere, testing::ValuesIn(AllCaptures(SMALL_CAPTURES)),
                         [](const auto& tested) {
                             return std::filesystem::path(tested.param.path).stem().string();
                         });

}  // namespace
