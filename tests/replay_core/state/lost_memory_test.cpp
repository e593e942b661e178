#include <cstddef>
#include <exception>

#include "replay_core/module/replay_core.h"
#include "replay_core/state/stored_form.h"
#include "tests/replay_core/state/state_test.h"
#include "tests/support/allocations.h"
#include "tvl/ids.h"

// Memory runs out in the Core, one allocation after the other. Whatever it is in the middle of, it
// says so by what it throws, or has lost nothing.

namespace {

std::string Text(const XMLNode& state) {
    return state.Write("\n", "\t", "");
}

enum class Ended { kWell, kThrown, kWithoutFault };

// How the work ends while its nth allocation fails, if it makes that many.
template <class Work>
Ended Failing(std::size_t nth, const Work& work) {
    const FailingAllocation fault(nth);
    Ended ended = Ended::kWell;
    try {
        work();
    } catch (const std::exception&) {
        ended = Ended::kThrown;
    }
    return fault.HasFailed() ? ended : Ended::kWithoutFault;
}

TEST_F(StateTest, IsGivenAndTakenUpWholeOrNotAtAllWhereMemoryRunsOut) {
    const Names names = {"walk", "run"};
    for (replay::Take* take : takes->ForRecording(names))
        Record(*take, {"Hips", "Knee", "Foot"});
    const std::string whole = WholeText();
    replay::Take& run = *takes->Find("run");
    const auto give = [&](XMLNode& to) { run.HandleExtension(TVL::kSceneBeingSaved, &to); };
    XMLNode given(replay::form::kRoot, "");
    give(given);
    Ended ended = Ended::kWell;
    for (std::size_t nth = 1; ended != Ended::kWithoutFault; ++nth) {
        XMLNode state(replay::form::kRoot, "");
        ended = Failing(nth, [&] { give(state); });
        EXPECT_TRUE(ended == Ended::kThrown || Text(state) == Text(given)) << nth;
    }

    takes->Drop();
    replay::ReplayCore core(adaptor);
    const XMLNode state(whole);
    const std::size_t before = Allocations();
    const XMLNode copy(state);
    ended = Ended::kWell;
    // Whoever calls makes a copy first.
    for (std::size_t nth = Allocations() - before + 1; ended != Ended::kWithoutFault; ++nth) {
        SCOPED_TRACE(nth);
        ended = Failing(nth, [&] { core.SetCoreState(state); });
        if (ended == Ended::kThrown) {
            EXPECT_THROW(core.GetCoreState(), std::exception);
        }
        EXPECT_EQ(Text(core.GetCoreState()), whole);
        core.ResetCore();
    }
}

}  // namespace
