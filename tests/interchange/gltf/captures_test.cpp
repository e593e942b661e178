#include "tests/interchange/captures.h"

#include <cmath>
#include <sstream>

#include "tests/end_to_end/command.h"
#include "tests/interchange/gltf/read_back.h"

namespace {

constexpr double kNear = 1e-5;         // metres
constexpr double kNearlyAlike = 1e-6;  // what two quaternions' product may lack of 1: 0.2 degrees

struct Sample {
    std::string node;
    std::array<double, 7> pose{};  // place, and turn as a quaternion x, y, z, w
};

// The rows of a file of samples, without its head.
std::vector<Sample> ReadSamples(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    std::vector<Sample> samples;
    while (std::getline(lines, line)) {
        std::istringstream parts(line);
        Sample& sample = samples.emplace_back();
        std::string part;
        std::getline(parts, part, ',');
        std::getline(parts, sample.node, ',');
        for (double& number : sample.pose) {
            std::getline(parts, part, ',');
            number = std::stod(part);
        }
    }
    return samples;
}

class CaptureInGltf : public Command, public testing::WithParamInterface<Capture> {};

TEST_P(CaptureInGltf, HasEveryNodeWhereTheHostHasIt) {
    isWatched_ = false;  // other tests hold recordings against the contract
    Do("record " + GetParam().path + GetParam().options + " -o scene");
    const Json told = Ask("export scene -o take.glb").at("takes").at(0);
    Do("export scene -o take.gltf");
    const double step = told.at("frameSeconds");
    const std::size_t frames = told.at("frames");
    Do("sample scene -o samples --times 0:" + Json(step * static_cast<double>(frames - 1)).dump() +
       ":" + Json(step).dump());
    const std::vector<Sample> samples = ReadSamples(Read("samples"));

    const ReadBack binary(File("take.glb"));
    const ReadBack text(File("take.gltf"));
    const std::vector<std::string> names = binary.Names();
    EXPECT_EQ(text.Names(), names);
    const std::vector<double> seconds = binary.KeySeconds(0);
    ASSERT_EQ(seconds.size(), frames);
    ASSERT_EQ(samples.size(), frames * names.size());
    double furthest = 0, unlike = 0, latest = 0, apart = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::size_t frame = i / names.size();
        const std::size_t node = i % names.size();
        ASSERT_TRUE(samples[i].node.ends_with(names[node])) << samples[i].node;
        const std::array<double, 3> place = binary.PlaceOf(node, frame);
        const std::array<double, 3> same = text.PlaceOf(node, frame);
        latest = std::max(latest, std::abs(seconds[frame] - step * static_cast<double>(frame)));
        const std::array<double, 4> turn = binary.TurnOf(node, frame);
        double product = 0;
        for (std::size_t part = 0; part < 4; ++part)
            product += turn[part] * samples[i].pose[3 + part];
        unlike = std::max(unlike, 1 - std::abs(product));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            furthest = std::max(furthest, std::abs(place[axis] - samples[i].pose[axis]));
            apart = std::max(apart, std::abs(place[axis] - same[axis]));
        }
    }
    EXPECT_LT(furthest, kNear);
    EXPECT_LT(unlike, kNearlyAlike);
    EXPECT_LT(latest, step / 100);
    EXPECT_EQ(apart, 0);
    EXPECT_LT(told.at("furthestMetres").get<double>(), kNear / 2);
    EXPECT_EQ(Findings(folder_, {"take.glb", "take.gltf"}), "");
}

INSTANTIATE_TEST_SUITE_P(All, CaptureInGltf, testing::ValuesIn(kCaptures), [](const auto& tested) {
    return std::filesystem::path(tested.param.path).stem().string();
});

}  // namespace
