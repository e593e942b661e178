#include <gtest/gtest.h>

#include "controllers/transform_control.h"
#include "headless/primitives.h"
#include "host/interface.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/ids.h"

namespace {

class AdaptorInterfaceTest : public testing::Test {
  protected:
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();
};

TEST_F(AdaptorInterfaceTest, TellsWhoItIs) {
    EXPECT_EQ(adaptor.GetVersion(), 8108);
    EXPECT_EQ(adaptor.GetName(), "3ds max 9 Adaptor");
    EXPECT_EQ(adaptor.GetShortName(), "adaptor_3dsmax9");
    EXPECT_EQ(adaptor.GetPlatformName(), "3ds max");
    EXPECT_EQ(adaptor.GetPlatformVersion(), "9");
    EXPECT_EQ(adaptor.GetPlatformWindow(), GetCOREInterface()->GetMAXHWnd());
    EXPECT_EQ(adaptor.createMesh(nullptr, "mesh"), nullptr);
    EXPECT_EQ(TimesTraced("(ERROR): \t(NOT IMPLEMENTED)createMesh 3ds max 9 Adaptor\n"), 1U);
}

TEST_F(AdaptorInterfaceTest, DescribesItsOptions) {
    const XMLNode panel = adaptor.GetOptionsPanel();
    EXPECT_EQ(panel.name, "group");
    const XMLNode& rows = panel.Child("body").Child("list").Child("body");
    ASSERT_EQ(rows.children.size(), 3U);
    EXPECT_EQ(rows.Child(0).Child("id").Text(), "1030");
    EXPECT_EQ(rows.Child(1).Child("id").Text(), "1027");
    EXPECT_EQ(rows.Child(1).Child("value").Text(), "true");
    EXPECT_EQ(rows.Child(2).name, "button");
    EXPECT_EQ(rows.Child(2).Child("id").Text(), "1028");
}

TEST_F(AdaptorInterfaceTest, TimesAreCutToWholeTicks) {
    const std::pair<double, TimeValue> cases[] = {
        {0.0004, 1}, {-0.0004, -1}, {0.5, 2400}, {1e300, 2147483647}};
    for (const auto& [seconds, ticks] : cases) {
        adaptor.SetCurrentTime(seconds);
        EXPECT_EQ(GetCOREInterface()->GetTime(), ticks) << seconds;
        EXPECT_EQ(adaptor.GetCurrentTime(), ticks / 4800.0);
    }
    adaptor.SetAnimationRange({0.25, 1.0003});
    EXPECT_EQ(GetCOREInterface()->GetAnimRange().Start(), 1200);
    EXPECT_EQ(GetCOREInterface()->GetAnimRange().End(), 4801);
    EXPECT_EQ(adaptor.GetAnimationRange(), (std::pair{0.25, 4801 / 4800.0}));
    EXPECT_EQ(adaptor.GetFrameRate(), 30);
    EXPECT_EQ(adaptor.GetFrameDuration(), 1.0 / 30);
}

TEST_F(AdaptorInterfaceTest, FocusNests) {
    adaptor.RequestFocus();
    adaptor.RequestFocus();
    EXPECT_FALSE(world.Session().AcceleratorsEnabled());
    adaptor.RestoreFocus();
    EXPECT_FALSE(world.Session().AcceleratorsEnabled());
    adaptor.RestoreFocus();
    EXPECT_TRUE(world.Session().AcceleratorsEnabled());
}

TEST_F(AdaptorInterfaceTest, APlacedRegistryIsUsedUntilItIsCleared) {
    TVL::ErrorCode* const own = TVL::ErrorCode::GetInstance();
    adaptor.SetErrorCode(nullptr);
    adaptor.SetErrorCode(own);
    EXPECT_FALSE(TVL::ErrorCode::external);
    adaptor.ClearErrorCode();
    EXPECT_EQ(TVL::ErrorCode::GetInstance(), own);
    EXPECT_TRUE(own->HasIdentifier("NOTIMPLEMENTED"));

    TVL::ErrorCode outside;
    adaptor.SetErrorCode(&outside);
    adaptor.SetErrorCode(&outside);
    EXPECT_TRUE(TVL::ErrorCode::external);
    adaptor.EndUndoGroup();
    EXPECT_TRUE(outside.HasIdentifier("UNDO_STARTENDMISMATCH"));
    adaptor.ClearErrorCode();
    EXPECT_FALSE(TVL::ErrorCode::GetInstance()->HasIdentifier("UNDO_STARTENDMISMATCH"));
}

TEST_F(AdaptorInterfaceTest, APlacedLogTakesTheTextOver) {
    constexpr const char* kBegins = "---IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";
    constexpr const char* kEnds = "---END IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";
    adaptor.SetLog(nullptr);
    adaptor.ClearLog();
    const std::string own = Trace();
    ASSERT_FALSE(own.empty());

    TVL::Log outside;
    adaptor.SetLog(&outside);
    EXPECT_EQ(outside.buffer.str(), kBegins + own + kEnds);
    adaptor.RequestFocus();
    adaptor.RestoreFocus();
    const std::string sofar = outside.buffer.str();
    adaptor.SetLog(&outside);
    EXPECT_EQ(outside.buffer.str(), sofar + kBegins + sofar + kEnds);
    adaptor.ClearLog();
    EXPECT_FALSE(TVL::Log::external);
    EXPECT_EQ(Trace(), "");
}

TEST_F(AdaptorInterfaceTest, TheTraceOnDiskHasEachLineOnceWhoseverLogItWasIn) {
    {
        TVL::Log outside;
        outside.buffer << "the Core's own line\n";
        adaptor.RequestFocus();
        adaptor.SetLog(&outside);
        adaptor.RestoreFocus();
        adaptor.SetLog(&outside);
        adaptor.BeginUndoGroup("group");
        adaptor.EndUndoGroup();
        adaptor.FlushUndoBuffer();
        adaptor.ClearLog();
    }
    adaptor.EndUndoGroup();
    world.ShutDown();
    const std::string trace = world.Trace();
    std::size_t from = 0;
    for (const char* line :
         {"Requesting focus\n", "the Core's own line\n", "Restoring focus\n",
          "Flushing 3ds max undo buffer\n", "Return value: Mismatch on undo start and end group\n",
          "(NOTICE): \tShutting down adaptor\n", "Adaptor is detaching core\n"}) {
        const std::size_t at = trace.find(line);
        ASSERT_NE(at, std::string::npos) << line;
        EXPECT_GE(at, from) << line;
        EXPECT_EQ(trace.find(line, at + 1), std::string::npos) << line;
        from = at;
    }
}

TEST_F(AdaptorInterfaceTest, TheConvertButtonConvertsEveryController) {
    INode* const node = GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
    node->SetTMController(new TransformControl);
    TVL::Util::Message other(323, "other");
    world.Core().convertButton->Broadcast(&other);
    EXPECT_EQ(node->GetTMController()->ClassID(), TransformControl::kClassID);
    TVL::Util::Message convert(TVL::kButtonPressed, "convert");
    world.Core().convertButton->Broadcast(&convert);
    EXPECT_NE(node->GetTMController()->ClassID(), TransformControl::kClassID);
}

}  // namespace
