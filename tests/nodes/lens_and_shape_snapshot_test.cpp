#include <climits>
#include <cmath>

#include "headless/primitives.h"
#include "tests/nodes/node_test.h"

namespace {

using Place = std::array<double, 3>;

using LensSnapshot = NodeTest;

TEST_F(LensSnapshot, ConvertsAnglesAndTakesTheThreeTypesAloneUntilTheCameraIsNotShown) {
    Node* const eye = Camera("Eye");
    TVL::CSnapshot_Lens* const lens = eye->AcquireLensSnapshot(0.5);
    EXPECT_EQ(lens->GetTime(), 0.5);
    EXPECT_EQ(lens->GetLensTransform(), TVL::CMatrix4::Identity());
    lens->SetFieldOfView(45);
    EXPECT_EQ(lens->GetFieldOfView(),
              double{static_cast<float>(45 * 0.017453292519943295)} * 57.29577951308232);
    lens->SetTargetDistance(12.3);
    EXPECT_EQ(lens->GetTargetDistance(), double{12.3F});  // in host units
    const std::pair<int, int> types[] = {{1, 1}, {0, 0}, {2, 2}, {-1, 2}, {3, 2}, {INT_MAX, 2}};
    for (const auto& [asked, set] : types) {
        lens->SetFieldOfViewType(asked);
        EXPECT_EQ(lens->GetFieldOfViewType(), set);
    }

    Host("Rig_Eye")->ReplaceReference(1, headless::NewSphere(1, 8));
    lens->SetFieldOfView(30);
    lens->SetFieldOfViewType(1);
    lens->SetTargetDistance(8);
    EXPECT_EQ(lens->GetFieldOfView(), 0);
    EXPECT_EQ(lens->GetFieldOfViewType(), 0);
    EXPECT_EQ(lens->GetTargetDistance(), 0);
    EXPECT_EQ(eye->AcquireLensSnapshot(0), nullptr);
    DeleteInHost("Rig_Eye");
    EXPECT_EQ(lens->GetTargetDistance(), 0);
    eye->ReleaseLensSnapshot(lens);
    eye->ReleaseLensSnapshot(nullptr);
}

// A line along x whose point at a parameter is the parameter, and which notes what it is asked. It
// has no type information of the language, as shapes of other plug-ins may have none.
class TellingShape final : public ShapeObject {
  public:
    int NumberOfCurves() override { return 1; }
    float LengthOfCurve(TimeValue, int) override { return 1; }
    Point3 InterpCurve3D(TimeValue t, int, float parameter, int type) override {
        asked.push_back(parameter);
        EXPECT_EQ(t, 7200);
        EXPECT_EQ(type, PARAM_NORMALIZED);
        return {parameter, 0, 0};
    }
    void GetClassName(HostString& name) override { name = "Telling shape"; }
    Class_ID ClassID() override { return {1, 2}; }
    void DeleteThis() override { delete this; }

    std::vector<float> asked;
};

class ShapeSnapshot : public NodeTest {
  protected:
    // Shows a line up, a line that turns a corner, and a point.
    const std::unique_ptr<CMAXNode> node =
        NodeOn(headless::NewSplines({headless::StraightLines({{0, 0, 0}, {0, 0, 39.37F}}),
                                     headless::StraightLines({{0, 0, 0}, {3, 0, 0}, {3, 1, 0}}),
                                     headless::StraightLines({{5, 5, 5}})}));
    TVL::CSnapshot_Shape* const shape = node->AcquireShapeSnapshot(1.5);

    void TearDown() override {
        node->ReleaseShapeSnapshot(shape);
        node->ReleaseShapeSnapshot(nullptr);
    }
    void ShowInstead(Object* object) { node->HostNode()->ReplaceReference(1, object); }
};

TEST_F(ShapeSnapshot, WalksAlongTheCurveThatIsSetOfThoseThatThereAre) {
    const std::pair<int, int> cases[] = {{-1, 0}, {99, 2}, {INT_MIN, 0}, {INT_MAX, 2}, {1, 1}};
    for (const auto& [asked, set] : cases) {
        shape->SetCurve(asked);
        EXPECT_EQ(shape->GetCurve(), set);
    }
    EXPECT_EQ(shape->GetCurveLength(), 4);  // host units
    EXPECT_EQ(shape->GetCurvePoint(0.5), (Place{2, 0, 0}));
    EXPECT_EQ(shape->GetCurvePoint(0.875), (Place{3, 0.5, 0}));
    EXPECT_EQ(shape->GetCurveTangent(0.5), (Place{1, 0, 0}));
    EXPECT_EQ(shape->GetCurveTangent(0.875), (Place{0, 1, 0}));
    shape->SetCurve(2);
    EXPECT_EQ(shape->GetCurveTangent(0.5), (Place{0, 1, 0}));

    // A released snapshot keeps its curve, also where the next shape has fewer.
    auto* const telling = new TellingShape;
    node->ReleaseShapeSnapshot(shape);
    ShowInstead(telling);
    ASSERT_EQ(node->AcquireShapeSnapshot(1.5), shape);
    EXPECT_EQ(shape->GetCurve(), 2);
    EXPECT_EQ(shape->GetCurveLength(), 0);
    EXPECT_EQ(shape->GetCurvePoint(0.5), Place());
    EXPECT_TRUE(telling->asked.empty());
    ShowInstead(headless::NewSplines({}));  // the telling one is gone
    EXPECT_EQ(shape->GetCurveCount(), 0);
    EXPECT_EQ(shape->GetCurveTangent(0.5), (Place{0, 1, 0}));
    shape->SetCurve(5);
    EXPECT_EQ(shape->GetCurve(), 0);
}

TEST_F(ShapeSnapshot, TakesTheTangentFromTwoPointsInsideTheCurve) {
    auto* const telling = new TellingShape;
    node->ReleaseShapeSnapshot(shape);
    ShowInstead(telling);
    ASSERT_EQ(node->AcquireShapeSnapshot(1.5), shape);
    const std::pair<double, double> cases[] = {
        {0, 0},           {0.000002, 0}, {0.5, 0.5 - 0.000005}, {1, 0.99999}, {0.999996, 0.99999},
        {1e300, 0.99999}, {-3, 0},       {7, 0.99999}};
    for (const auto& [parameter, from] : cases) {
        telling->asked.clear();
        EXPECT_NEAR(shape->GetCurveTangent(parameter)[0], 1, 1e-12) << parameter;
        EXPECT_EQ(telling->asked, (std::vector<float>{static_cast<float>(from),
                                                      static_cast<float>(from + 0.00001)}));
    }
    shape->GetCurveTangent(NAN);
}

}  // namespace
