#include "interchange/page.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>

#include "interchange/turns.h"
#include "tests/interchange/made_takes.h"
#include "tvl/base64_buffer.h"

// What a page holds of a take, read as viewer/README.md tells.

namespace {

using TVL::CMatrix4;

using OnePose = std::function<CMatrix4(std::size_t frame)>;

struct Page {
    std::string text;
    std::vector<std::string> forms;  // of each part of the frames
    std::vector<std::size_t> counts;
    std::vector<CMatrix4> worlds;  // at each frame
};

std::int16_t PartAt(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    std::int16_t part = 0;
    std::memcpy(&part, &bytes.at(at + 1) - 1, sizeof part);
    return part;
}

float NumberAt(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    float number = 0;
    std::memcpy(&number, &bytes.at(at + 3) - 3, sizeof number);
    return number;
}

CMatrix4 AxesOf(const std::array<double, 4>& turn) {
    const auto [x, y, z, w] = turn;
    CMatrix4 axes = CMatrix4::Identity();
    const double rows[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                               {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                               {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
    for (int row = 0; row < 3; ++row)
        std::copy(rows[row], rows[row] + 3, axes[row]);
    return axes;
}

// Of one node at `frames` frames, which are all there is in `text`.
void ReadFrames(const std::string& text, bool areTurns, std::size_t frames, Page& page) {
    const std::vector<std::uint8_t> bytes = Base64Buffer(text).Bytes();
    const std::size_t ahead = areTurns ? 0 : 4;
    ASSERT_EQ(bytes.size(), ahead + (areTurns ? 20 : 30) * frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const std::size_t parts = ahead + 12 * frames + (areTurns ? 8 : 18) * frame;
        std::array<double, 9> part{};
        for (std::size_t i = 0; i < (areTurns ? 4 : 9); ++i)
            part[i] = PartAt(bytes, parts + 2 * i) / 32767.0;
        CMatrix4 world = CMatrix4::Identity();
        if (areTurns) world = AxesOf({part[0], part[1], part[2], part[3]});
        for (int row = 0; row < 3; ++row)
            for (int i = 0; i < 3; ++i) {
                const auto at = static_cast<std::size_t>(3 * row + i);
                if (!areTurns) world[row][i] = part[at] * double{NumberAt(bytes, 0)};
            }
        for (std::size_t i = 0; i < 3; ++i)
            world[3][i] = double{NumberAt(bytes, ahead + 12 * frame + 4 * i)};
        page.worlds.push_back(world);
    }
}

Page WrittenAndRead(const OnePose& pose, std::size_t frames, const std::string& name = "joint") {
    interchange::Take take = Chain(1, frames, 1);
    take.name = take.nodes[0].name = name;
    MadePoses poses([&](double seconds, World world) {
        world[0] = pose(static_cast<std::size_t>(std::lround(seconds)));
    });
    std::ostringstream out;
    EXPECT_EQ(interchange::WritePage({{&take, &poses}}, name, "before<!-- takes -->behind", out,
                                     [] { return true; }),
              "");
    Page page{.text = out.str(), .forms{}, .counts{}, .worlds{}};
    const std::string attributes = "data-take=\"0\" data-frames=\"";
    for (std::size_t at = 0; (at = page.text.find(attributes, at)) != std::string::npos;) {
        at += attributes.size();
        page.counts.push_back(std::stoul(page.text.substr(at)));
        const std::size_t form = page.text.find("data-form=\"", at) + 11;
        page.forms.push_back(page.text.substr(form, page.text.find('"', form) - form));
        const std::size_t first = page.text.find("<!--", form) + 4;
        ReadFrames(page.text.substr(first, page.text.find("-->", first) - first),
                   page.forms.back() == "turns", page.counts.back(), page);
    }
    return page;
}

TEST(PageTest, HoldsTurnsInFourNumbersAndAllOtherAxesAsTheyAre) {
    const CMatrix4 turn = interchange::TurnAbout(1, 70) * interchange::TurnAbout(0, -160);
    CMatrix4 shear = CMatrix4::Identity();
    shear[1][0] = 0.5;
    const struct {
        CMatrix4 change;
        const char* form;
    } rows[] = {{CMatrix4::Identity(), "turns"},
                {CMatrix4::Diagonal(1 + 5e-5, 1, 1, 1), "turns"},
                {CMatrix4::Diagonal(1.01, 1.01, 1.01, 1), "axes"},
                {CMatrix4::Diagonal(1, 250, 0.1, 1), "axes"},
                {shear, "axes"},
                {CMatrix4::Diagonal(1, 1, -1, 1), "axes"},
                {CMatrix4::Diagonal(1, 0, 1, 1), "axes"},
                {CMatrix4::Diagonal(0, 0, 0, 1), "axes"}};
    for (const auto& [change, form] : rows) {
        SCOPED_TRACE(change[1][1]);
        const OnePose pose = [&turn, changed = change * turn](std::size_t frame) {
            CMatrix4 world = frame == 1 ? changed : turn;
            world[3][0] = static_cast<double>(frame) + 0.25;
            return world;
        };
        const Page page = WrittenAndRead(pose, 3);
        EXPECT_EQ(page.forms, std::vector<std::string>{form});
        ASSERT_EQ(page.worlds.size(), 3);
        const double longest = std::max(1.0, change[1][1]);
        for (std::size_t frame = 0; frame < 3; ++frame)
            for (int row = 0; row < 4; ++row)
                for (int i = 0; i < 3; ++i)
                    EXPECT_NEAR(page.worlds[frame][row][i], pose(frame)[row][i], 1e-4 * longest);
    }
}

TEST(PageTest, HoldsEachFrameOfALongTakeOnce) {
    constexpr std::size_t kMost = 26214;  // of one node in one part
    for (const std::size_t frames : {std::size_t{1}, kMost, kMost + 1, 2 * kMost + 2}) {
        const Page page = WrittenAndRead(
            [](std::size_t frame) {
                CMatrix4 world = CMatrix4::Identity();
                world[3][2] = static_cast<double>(frame);
                return world;
            },
            frames);
        EXPECT_EQ(page.counts.size(), (frames + kMost - 1) / kMost);
        EXPECT_EQ(page.counts.front(), std::min(frames, kMost));
        ASSERT_EQ(page.worlds.size(), frames);
        const std::string most = std::to_string(frames - 1) + ".0]";
        EXPECT_NE(page.text.find("\"most\":[0.0,0.0," + most), std::string::npos);
        for (std::size_t frame = 0; frame < frames; ++frame)
            ASSERT_EQ(page.worlds[frame][3][2], static_cast<double>(frame));
    }
}

TEST(PageTest, NeitherNamesNorNumbersThatAreNoneBreakIt) {
    const OnePose pose = [](std::size_t) {
        CMatrix4 world = CMatrix4::Identity();
        world[0][0] = world[3][1] = std::nan("");
        world[3][0] = 1e300;
        return world;
    };
    const Page page = WrittenAndRead(pose, 2, "</script><!--\n\"\xFF");
    EXPECT_EQ(page.text.find("</script><!--"), std::string::npos);
    EXPECT_EQ(page.text.find("null"), std::string::npos);
    EXPECT_EQ(page.worlds.at(1)[0][0], 0);
    EXPECT_TRUE(std::isfinite(page.worlds.at(1)[3][0]));
}

}  // namespace
