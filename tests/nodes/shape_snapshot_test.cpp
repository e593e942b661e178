#include <climits>
#include <cmath>

#include "headless/primitives.h"
#include "nodes/max_node.h"
#include "tests/nodes/node_test.h"

namespace {

// A line along x whose point at a parameter is the parameter, and which notes what it is asked.
class TellingShape final : public ShapeObject {
  public:
    int NumberOfCurves() override { return 1; }
    float LengthOfCurve(TimeValue, int) override { return 1; }
    Point3 InterpCurve3D(TimeValue t, int, float parameter, int type) override {
        asked.push_back(parameter);
        lastTime = t;
        EXPECT_EQ(type, PARAM_NORMALIZED);
        return {parameter, 0, 0};
    }
    void GetClassName(HostString& name) override { name = "Telling shape"; }
    Class_ID ClassID() override { return {1, 2}; }
    void DeleteThis() override { delete this; }

    std::vector<float> asked;
    TimeValue lastTime = 0;
};

class ShapeSnapshot : public NodeTest {
  protected:
    static INode* Shown(Object* object) { return GetCOREInterface()->CreateObjectNode(object); }

    // A line up, a line that turns a corner, and a point.
    static INode* ThreeCurves() {
        using headless::StraightLines;
        return Shown(headless::NewSplines({StraightLines({{0, 0, 0}, {0, 0, 39.37F}}),
                                           StraightLines({{0, 0, 0}, {3, 0, 0}, {3, 1, 0}}),
                                           StraightLines({{5, 5, 5}})}));
    }
};

TEST_F(ShapeSnapshot, WalksAlongTheCurveThatIsSet) {
    CMAXNode node(nullptr, ThreeCurves());
    TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(0);
    ASSERT_NE(shape, nullptr);
    ASSERT_EQ(shape->GetCurveCount(), 3);
    EXPECT_FLOAT_EQ(static_cast<float>(shape->GetCurveLength()), 39.37F);  // host units

    shape->SetCurve(1);
    EXPECT_EQ(shape->GetCurveLength(), 4);
    EXPECT_EQ(shape->GetCurvePoint(0.5), (std::array<double, 3>{2, 0, 0}));
    EXPECT_EQ(shape->GetCurvePoint(0.875), (std::array<double, 3>{3, 0.5, 0}));
    EXPECT_EQ(shape->GetCurveTangent(0.5), (std::array<double, 3>{1, 0, 0}));
    EXPECT_EQ(shape->GetCurveTangent(0.875), (std::array<double, 3>{0, 1, 0}));
    shape->SetCurve(2);
    EXPECT_EQ(shape->GetCurveTangent(0.5), (std::array<double, 3>{0, 1, 0}));
    node.ReleaseShapeSnapshot(shape);
}

TEST_F(ShapeSnapshot, HoldsTheCurveToThoseThatThereAre) {
    INode* const host = ThreeCurves();
    CMAXNode node(nullptr, host);
    TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(0);
    const std::pair<int, int> cases[] = {{-1, 0}, {99, 2}, {1, 1}, {INT_MIN, 0}, {INT_MAX, 2}};
    for (const auto& [asked, set] : cases) {
        shape->SetCurve(asked);
        EXPECT_EQ(shape->GetCurve(), set);
    }
    // A released snapshot keeps its curve, also where the next shape has fewer.
    node.ReleaseShapeSnapshot(shape);
    EXPECT_EQ(node.AcquireShapeSnapshot(1), shape);
    EXPECT_EQ(shape->GetCurve(), 2);
    node.ReleaseShapeSnapshot(shape);
    auto* const telling = new TellingShape;
    host->ReplaceReference(1, telling);
    EXPECT_EQ(node.AcquireShapeSnapshot(1), shape);
    EXPECT_EQ(shape->GetCurve(), 2);
    EXPECT_EQ(shape->GetCurveLength(), 0);
    EXPECT_EQ(shape->GetCurvePoint(0.5), (std::array<double, 3>{0, 0, 0}));
    EXPECT_TRUE(telling->asked.empty());

    host->ReplaceReference(1, headless::NewSplines({}));  // the telling one is gone
    EXPECT_EQ(shape->GetCurveCount(), 0);
    EXPECT_EQ(shape->GetCurveTangent(0.5), (std::array<double, 3>{0, 1, 0}));
    shape->SetCurve(5);
    EXPECT_EQ(shape->GetCurve(), 0);
    node.ReleaseShapeSnapshot(shape);
    node.ReleaseShapeSnapshot(nullptr);
}

TEST_F(ShapeSnapshot, TakesTheTangentFromTwoPointsInsideTheCurve) {
    auto* const telling = new TellingShape;
    CMAXNode node(nullptr, Shown(telling));
    TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(1.5);
    const struct {
        double parameter;
        double from;
    } cases[] = {{0, 0},  {0.000002, 0}, {0.5, 0.5 - 0.000005}, {1, 0.99999}, {0.999996, 0.99999},
                 {-3, 0}, {7, 0.99999},  {1e300, 0.99999}};
    for (const auto& [parameter, from] : cases) {
        telling->asked.clear();
        const auto tangent = shape->GetCurveTangent(parameter);
        EXPECT_NEAR(tangent[0], 1, 1e-12) << parameter;
        EXPECT_EQ(telling->asked, (std::vector<float>{static_cast<float>(from),
                                                      static_cast<float>(from + 0.00001)}))
            << parameter;
    }
    EXPECT_EQ(telling->lastTime, 7200);
    shape->GetCurveTangent(NAN);
    node.ReleaseShapeSnapshot(shape);
}

}  // namespace
