#include "controllers/transform_control.h"
#include "tests/nodes/node_test.h"

namespace {

using AdaptorInterfaceTest = NodeTest;

TEST_F(AdaptorInterfaceTest, TellsWhoItIsCutsTimesToWholeTicksAndConvertsAtAPress) {
    EXPECT_EQ((Names{adaptor.GetName(), adaptor.GetShortName(), adaptor.GetPlatformName(),
                     adaptor.GetPlatformVersion()}),
              (Names{"3ds max 9 Adaptor", "adaptor_3dsmax9", "3ds max", "9"}));
    EXPECT_EQ(adaptor.GetVersion(), 8108);
    EXPECT_EQ(adaptor.GetPlatformWindow(), GetCOREInterface()->GetMAXHWnd());
    EXPECT_EQ(adaptor.createMesh(nullptr, "mesh"), nullptr);
    EXPECT_EQ(TimesTraced("(ERROR): \t(NOT IMPLEMENTED)createMesh 3ds max 9 Adaptor\n"), 1U);

    const std::pair<double, TimeValue> cases[] = {
        {0.0004, 1}, {-0.0004, -1}, {0.5, 2400}, {1e300, 2147483647}};
    for (const auto& [seconds, ticks] : cases) {
        adaptor.SetCurrentTime(seconds);
        EXPECT_EQ(GetCOREInterface()->GetTime(), ticks) << seconds;
        EXPECT_EQ(adaptor.GetCurrentTime(), ticks / 4800.0);
    }
    adaptor.SetAnimationRange({0.25, 1.0003});
    EXPECT_EQ(GetCOREInterface()->GetAnimRange().Start(), 1200);
    EXPECT_EQ(adaptor.GetAnimationRange(), (std::pair{0.25, 4801 / 4800.0}));
    EXPECT_EQ(adaptor.GetFrameRate(), 30);
    EXPECT_EQ(adaptor.GetFrameDuration(), 1.0 / 30);

    Helper("Hip");
    for (const bool isPress : {false, true}) {
        TVL::Util::Message message(isPress ? TVL::kButtonPressed : 323, "convert");
        world.Core().convertButton->Broadcast(&message);
        const Class_ID left = Host("Rig_Hip")->GetTMController()->ClassID();
        EXPECT_EQ(left != TransformControl::kClassID, isPress);
    }
}

TEST_F(AdaptorInterfaceTest, APlacedRegistryIsUsedUntilItIsClearedAndNeverEnded) {
    // In the Core's own module it may be the instance that is owned there.
    struct Outside final : TVL::ErrorCode {
        using TVL::ErrorCode::operator=;
        void Destroy() override { ADD_FAILURE() << "ended"; }
    };
    TVL::ErrorCode* const own = TVL::ErrorCode::GetInstance();
    adaptor.SetErrorCode(nullptr);
    adaptor.SetErrorCode(own);
    EXPECT_FALSE(TVL::ErrorCode::external);
    adaptor.ClearErrorCode();
    EXPECT_EQ(TVL::ErrorCode::GetInstance(), own);
    EXPECT_TRUE(own->HasIdentifier("NOTIMPLEMENTED"));

    Outside outside;
    Outside next;
    for (Outside* placed : {&outside, &next, &next, &outside}) {
        adaptor.SetErrorCode(placed);
        EXPECT_TRUE(TVL::ErrorCode::external);
    }
    adaptor.EndUndoGroup();
    EXPECT_TRUE(outside.HasIdentifier("UNDO_STARTENDMISMATCH"));
    adaptor.ClearErrorCode();
    EXPECT_FALSE(TVL::ErrorCode::GetInstance()->HasIdentifier("UNDO_STARTENDMISMATCH"));
}

TEST_F(AdaptorInterfaceTest, APlacedLogTakesTheTextOverAndTheFileHasEachLineOnce) {
    const std::string begins = "---IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";
    const std::string ends = "---END IMPORTED DATA FROM EXTERNAL LOG INSTANCE---\n";
    adaptor.RequestFocus();
    adaptor.SetLog(nullptr);
    adaptor.ClearLog();
    const std::string own = Trace();
    {
        TVL::Log outside;
        outside.buffer << "the Core's own line\n";
        adaptor.SetLog(&outside);
        EXPECT_EQ(outside.buffer.str(), "the Core's own line\n" + begins + own + ends);
        adaptor.RestoreFocus();
        const std::string sofar = outside.buffer.str();
        adaptor.SetLog(&outside);
        EXPECT_EQ(outside.buffer.str(), sofar + begins + sofar + ends);
        adaptor.FlushUndoBuffer();
        adaptor.ClearLog();
    }
    EXPECT_TRUE(!TVL::Log::external && Trace().empty());
    adaptor.EndUndoGroup();
    world.ShutDown();
    const std::string trace = world.Trace();
    std::size_t from = 0;
    for (const char* line :
         {"Requesting focus\n", "the Core's own line\n", "Restoring focus\n",
          "Flushing 3ds max undo buffer\n", "Return value: Mismatch on undo start and end group\n",
          "(NOTICE): \tShutting down adaptor\n", "Adaptor is detaching core\n"}) {
        const std::size_t at = trace.find(line, from);
        ASSERT_NE(at, std::string::npos) << line;
        EXPECT_EQ(trace.find(line), trace.rfind(line)) << line;
        from = at;
    }
}

}  // namespace
