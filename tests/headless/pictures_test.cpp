#include <algorithm>
#include <cmath>
#include <map>
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

    // The pixel of a node, by where its name stands if no other name does.
    IPoint2 PlaceOf(const std::string& name, TimeValue t) {
        settings.namesAsked = {name};
        for (const headless::PictureWord& word : At(t).words)
            if (word.text == name) return {word.left - 5, (word.top + word.bottom) / 2};
        ADD_FAILURE() << name << " is not there";
        return {};
    }

    std::vector<IPoint2> PlacesOfDot() {
        std::vector<IPoint2> places;
        for (const TimeValue t : times)
            places.push_back(PlaceOf("dot", t));
        return places;
    }

    Times times;
    INode* dot = nullptr;
    headless::ViewportSettings settings;
};

TEST_F(PicturesTest, OneCameraHoldsTheWholeMotionAndAFollowerKeepsItInTheMiddle) {
    settings.width = 320;
    settings.height = 180;
    const std::tuple<ViewSide, std::size_t, std::size_t> rows[] = {{ViewSide::kQuarter, 0, 8},
                                                                   {ViewSide::kFront, 0, 5},
                                                                   {ViewSide::kSide, 2, 5},
                                                                   {ViewSide::kTop, 0, 8}};
    for (const auto& [side, rightmost, apart] : rows) {
        settings.side = side;
        settings.path = PathThrough(settings, times, false);
        const std::vector<IPoint2> places = PlacesOfDot();
        std::set<std::pair<int, int>> differing;
        for (const IPoint2& at : places) {
            EXPECT_TRUE(at.x >= 10 && at.x < 310 && at.y >= 10 && at.y < 170)
                << at.x << ' ' << at.y;
            EXPECT_LE(at.x, places[rightmost].x);
            differing.insert({at.x / 2, at.y / 2});
        }
        EXPECT_LE(places[2].y, places[6].y) << "what is farther is higher in the picture";
        EXPECT_GE(differing.size(), apart);
        settings.path = PathThrough(settings, times, true);
        for (const IPoint2& at : PlacesOfDot())
            EXPECT_TRUE(std::abs(at.x - 160) <= 1 && std::abs(at.y - 90) <= 1)
                << at.x << ' ' << at.y;
    }
}

TEST_F(PicturesTest, AFollowerGoesAlongWithWhatMovesAndDoesNotShakeWithIt) {
    Place(Add("rest"), {Units(9), 0, 0});
    AnimateOn();
    times.clear();
    for (int i = 0; i <= 60; ++i) {
        times.push_back(i * 480);
        Place(dot, {Units(0.1 * i), Units(i % 2 ? 0.5 : -0.5), 0}, times.back());
    }
    AnimateOff();
    const headless::CameraPath path = PathThrough(settings, times, true);
    EXPECT_EQ(path.places.size(), times.size());
    for (std::size_t i = 11; i + 11 < path.places.size(); ++i) {
        const Point3 step = path.places[i] - path.places[i - 1];
        EXPECT_NEAR(step.x, Units(0.1), Units(0.01));
        EXPECT_NEAR(step.y, 0, Units(0.05));
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
    for (const headless::DrawText& text : list.texts) {
        if (text.isName) continue;
        metres.insert(text.text);
        const float place = text.text.front() == 'x' ? text.place.x : -text.place.y;
        EXPECT_NEAR(std::stof(text.text.substr(2)), place / Units(1), 0.001) << text.text;
        EXPECT_LT(text.text.front() == 'x' ? text.place.y : -text.place.x, Units(1)) << text.text;
    }
    EXPECT_EQ(list.texts.front().text, "x 0 m");
    Place(Add("on the label"), list.texts.front().place);
    EXPECT_NE(headless::DrawScene(settings, 0).list.texts.front().text, "x 0 m");
    for (const char* const label : {"x 1 m", "x -1 m", "x 0 m", "z -1 m"})
        EXPECT_TRUE(metres.contains(label)) << label;
    settings.width = 160;
    const headless::DrawList narrow = headless::DrawScene(settings, 0).list;
    EXPECT_LT(narrow.batches.front().vertices.size(), list.batches.front().vertices.size());
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
    Picture sheet = headless::EmptySheet(128, 64);
    PutOnSheet(small, 64, 0, sheet);
    EXPECT_EQ(sheet.rgb.front(), 48) << "the background's red";
    for (std::size_t row = 0; row < 64; ++row)
        EXPECT_TRUE(std::equal(&small.rgb[row * 192], &small.rgb[row * 192] + 192,
                               &sheet.rgb[row * 384 + 192]));
}

TEST_F(PicturesTest, NoNameCoversAPlaceThatIsNamedAndALineLeadsToOneThatIsFar) {
    std::vector<std::string> names{"dot"};
    for (int i = 0; i < 8; ++i) {
        names.push_back("a joint of many " + std::to_string(i));
        Place(Add(names.back().c_str()), {Units(-0.05 * i), 0, Units(1 - 0.04 * (i % 3))});
    }
    settings.side = ViewSide::kFront;
    settings.width = 640;
    settings.height = 360;
    settings.path = PathThrough(settings, times, false);
    std::map<std::string, IPoint2> places;
    for (const std::string& name : names)
        places[name] = PlaceOf(name, 0);
    settings.namesAsked = names;
    const Picture picture = At(0);
    int far = 0;
    for (const auto& [text, left, top, right, bottom] : picture.words) {
        for (const auto& [name, at] : places)
            EXPECT_FALSE(at.x >= left && at.x < right && at.y >= top && at.y < bottom)
                << text << " covers " << name;
        if (!places.contains(text)) continue;
        const IPoint2 at = places[text];
        const int x = std::clamp(at.x, left, right - 1) - at.x;
        const int y = std::clamp(at.y, top, bottom - 1) - at.y;
        if (std::hypot(x, y) <= 12) continue;
        ++far;
        const double length = std::max(std::abs(x), std::abs(y));
        for (const double i : {0.0, std::floor(length / 4), std::floor(length / 2)}) {
            const auto pixel = (at.y + std::lround(i / length * y)) * settings.width + at.x +
                               std::lround(i / length * x);
            EXPECT_GE(picture.rgb[static_cast<std::size_t>(pixel * 3)], 130)
                << text << " at " << i << " of " << length;
        }
    }
    EXPECT_GT(far, 0);
}

}  // namespace
