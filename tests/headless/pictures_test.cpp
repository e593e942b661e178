#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

#include "headless/viewport.h"
#include "tests/headless/host_world.h"

namespace {

using headless::Picture;
using headless::ViewSide;

// A dot on its way round the origin, a metre away and a metre up, at eight moments.
class PicturesTest : public HostWorld {
  protected:
    PicturesTest() {
        dot = Add("dot");
        AnimateOn();
        for (int i = 0; i < 8; ++i) {
            times.push_back(i * 4800);
            const double turn = i * std::numbers::pi / 4;
            Place(dot, {Units(std::cos(turn)), Units(std::sin(turn)), Units(1)}, times.back());
        }
        AnimateOff();
        settings.namesAsked = {"dot"};
    }
    static float Units(double metres) { return static_cast<float>(metres * 39.37); }

    Picture At(TimeValue t) const {
        Picture picture;
        EXPECT_EQ(headless::DrawPicture(settings, t, picture), "");
        return picture;
    }

    // Where the dot's name begins at each moment, from the middle of the picture.
    std::vector<IPoint2> WaysFromMiddle() const {
        std::vector<IPoint2> ways;
        for (const TimeValue t : times)
            for (const headless::PictureWord& word : At(t).words)
                if (word.text == "dot")
                    ways.push_back({word.left - settings.width / 2,
                                    (word.top + word.bottom) / 2 - settings.height / 2});
        EXPECT_EQ(ways.size(), times.size());
        return ways;
    }

    Times times;
    INode* dot = nullptr;
    headless::ViewportSettings settings;
};

TEST_F(PicturesTest, OneCameraHoldsTheWholeMotionAndAFollowerKeepsItInTheMiddle) {
    for (const ViewSide side :
         {ViewSide::kQuarter, ViewSide::kFront, ViewSide::kSide, ViewSide::kTop}) {
        settings.side = side;
        settings.path = PathThrough(settings, times, false);
        std::set<std::pair<int, int>> places;
        for (const IPoint2& way : WaysFromMiddle())
            places.insert({way.x / 4, way.y / 4});
        EXPECT_GE(places.size(), side == ViewSide::kQuarter || side == ViewSide::kTop ? 8U : 5U);
        settings.path = PathThrough(settings, times, true);
        for (const IPoint2& way : WaysFromMiddle())
            EXPECT_TRUE(std::abs(way.x) < 20 && std::abs(way.y) < 20) << way.x << ' ' << way.y;
    }
}

TEST_F(PicturesTest, TheGridReachesUnderEveryMomentAndSaysMetres) {
    settings.path = PathThrough(settings, times, false);
    const headless::DrawList list = headless::DrawScene(settings, 0).list;
    Box3 lines;
    for (const headless::DrawVertex& vertex : list.batches.front().vertices)
        lines += vertex.place;
    EXPECT_TRUE(lines.pmin.x <= Units(-1) && lines.pmax.x >= Units(1));
    EXPECT_TRUE(lines.pmin.y <= Units(-1) && lines.pmax.y >= Units(1));
    std::set<std::string> metres;
    for (const headless::DrawText& text : list.texts)
        if (!text.isName) metres.insert(text.text);
    EXPECT_TRUE(metres.contains("1 m") && metres.contains("-1 m") && metres.contains("0 m"));
}

TEST_F(PicturesTest, CamerasAreDrawnAndHitIfTheyAreAskedFor) {
    INode* const eye = host.CreateObjectNode(host.CreateCameraObject(0));
    settings.showsGrid = false;
    const HitRegion all{HITTYPE_RECT, 1, 0, {{-9999, -9999}, {9999, 9999}}};
    for (const bool shows : {false, true}) {
        settings.showsCameras = shows;
        EXPECT_EQ(headless::DrawScene(settings, 0).list.batches.empty(), !shows);
        const auto hit = headless::NodesHit(settings, 0, all);
        EXPECT_EQ(std::ranges::count(hit, eye->GetHandle()), shows ? 1 : 0);
    }
}

TEST_F(PicturesTest, EachNameThatHasRoomIsThereAndNoneCoversAnother) {
    settings.namesAsked.clear();
    settings.showsNames = true;
    settings.caption = "frame 0, 0.00 s";
    std::set<std::string> names{"dot"};
    for (int i = 0; i < 40; ++i)
        names.insert(Add(("joint " + std::to_string(i)).c_str())->GetName());
    const Picture picture = At(0);
    EXPECT_TRUE(picture.namesWithoutRoom.empty());
    for (auto a = picture.words.begin(); a != picture.words.end(); ++a) {
        names.erase(a->text);
        EXPECT_TRUE(a->left >= 0 && a->right <= 960 && a->top >= 0 && a->bottom <= 540);
        for (auto b = std::next(a); b != picture.words.end(); ++b)
            EXPECT_TRUE(a->right <= b->left || b->right <= a->left || a->bottom <= b->top ||
                        b->bottom <= a->top)
                << a->text << " and " << b->text;
    }
    EXPECT_TRUE(names.empty()) << *names.begin();
    EXPECT_EQ(picture.words.front().text, settings.caption);
    settings.width = settings.height = 64;
    const Picture small = At(0);
    EXPECT_FALSE(small.namesWithoutRoom.empty());
    const Picture sheet = headless::SideBySide({small, small, small}, 2);
    EXPECT_EQ(sheet.rgb.back(), 61) << "the background's blue";
}

}  // namespace
