#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "host/node.h"
#include "tests/headless/viewport_world.h"

namespace {

using headless::Colour;
using headless::Corner;
using headless::DrawVertex;

class DrawnObjectsTest : public ViewportWorld {
  protected:
    static constexpr Colour kRed{1, 0, 0};
    static constexpr Colour kWhite{1, 1, 1};

    static bool AreAll(const std::vector<DrawVertex>& vertices, const Colour& colour) {
        return !vertices.empty() && std::ranges::all_of(vertices, [&](const DrawVertex& vertex) {
            return vertex.colour == colour;
        });
    }

    // What a rectangle hits that holds the whole picture, or its uppermost row alone.
    std::vector<std::uint32_t> Hit(int height, int crossing) const {
        const HitRegion region{HITTYPE_RECT, crossing, 0, {{0, 0}, {settings.width, height}}};
        return headless::NodesHit(settings, 0, region);
    }
};

TEST_F(DrawnObjectsTest, EachShowsInItsNodesColourWithWhiteEdgesIfSelectedAndIsHitWhereItShows) {
    struct Case {
        Object* object;
        const char* name;
        bool hasFaces;
    };
    for (const auto& [object, name, hasFaces] : {
             Case{headless::NewSphere(10, 16), "Sphere01", true},
             Case{headless::NewGround(10, 2), "Ground01", true},
             Case{headless::NewBend(headless::NewGround(10, 2), 45), "Ground01", true},
             Case{headless::NewBend(headless::NewSphere(10, 16), 45), "Sphere01", true},
             Case{headless::NewSplines({{{Corner({}), Corner({9, 9, 9})}}}), "Line01", false},
         }) {
        INode* node = host.CreateObjectNode(object);
        EXPECT_STREQ(node->GetName(), name);
        SCOPED_TRACE(node->GetName());
        node->SetWireColor(0x0000FF);
        settings.isWireframe = false;
        EXPECT_TRUE(AreAll(Drawn(hasFaces), kRed));
        EXPECT_TRUE(Drawn(!hasFaces).empty());
        EXPECT_EQ(Hit(settings.height, 0), std::vector{node->GetHandle()});
        EXPECT_TRUE(Hit(0, 1).empty());

        session.Select({node->GetName()});
        EXPECT_TRUE(AreAll(Drawn(false), kWhite));
        EXPECT_EQ(AreAll(Drawn(true), kRed), hasFaces);
        settings.isWireframe = true;
        EXPECT_TRUE(AreAll(Drawn(false), kWhite));
        EXPECT_TRUE(Drawn(true).empty());
        session.NewScene();
    }
}

TEST_F(DrawnObjectsTest, ACameraShowsWhatItSeesAndAHorizonAtItsOwnHeight) {
    CameraObject* camera = host.CreateCameraObject(0);
    INode* node = host.CreateObjectNode(camera);
    camera->SetFOV(0, std::numbers::pi_v<float> / 2);
    camera->SetTDist(0, 100);
    // It looks along y from 50 high, up by a tenth, and leans over.
    Matrix3 world({0.8F, 0, 0.6F}, {-0.6F, -0.08F, 0.8F}, {0.048F, -1, -0.1F}, {5, 0, 50});
    node->SetNodeTM(0, world);

    Box3 box;
    const auto width = [&](int type) {
        camera->SetFOVType(type);
        camera->GetLocalBoundBox(0, node, nullptr, box);
        return box.pmax.x - box.pmin.x;
    };
    EXPECT_LT(width(0), 100) << "a camera without a cone shows a short one";
    camera->SetConeState(1);
    EXPECT_NEAR(width(0), 200, 1e-3);
    EXPECT_NEAR(box.pmin.z, -100, 1e-3);
    EXPECT_NEAR(width(1), 200 * 16.0 / 9, 1e-3);
    EXPECT_NEAR(width(2), 200 * 16 / std::hypot(16.0, 9.0), 1e-3);

    EXPECT_EQ(Drawn(false).size(), 2 * 8U);
    camera->SetHorzLineState(1);
    const std::vector<DrawVertex> lines = Drawn(false);
    ASSERT_EQ(lines.size(), 2 * 9U);
    EXPECT_NEAR(lines[16].place.z, 50, 1e-3);
    EXPECT_NEAR(lines[17].place.z, 50, 1e-3);
    EXPECT_GT(Length(lines[17].place - lines[16].place), 100);
    EXPECT_EQ(Hit(settings.height, 1), std::vector{node->GetHandle()});

    camera->SetTDist(0, std::nanf(""));
    EXPECT_TRUE(Drawn(false).empty());
    EXPECT_TRUE(Hit(settings.height, 1).empty());
}

}  // namespace
