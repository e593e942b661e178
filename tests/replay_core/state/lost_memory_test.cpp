#include <cstddef>
#include <exception>
#include <optional>

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

// Whether the work throws while its nth allocation fails; nothing if it makes fewer.
template <class Work>
std::optional<bool> Throws(std::size_t nth, const Work& work) {
    const FailingAllocation fault(nth);
    bool throws = false;
    try {
        work();
    } catch (const std::exception&) {
        throws = true;
    }
    return fault.HasFailed() ? std::optional(throws) : std::nullopt;
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
    std::optional<bool> throws = false;
    for (std::size_t nth = 1; throws; ++nth) {
        XMLNode state(replay::form::kRoot, "");
        throws = Throws(nth, [&] { give(state); });
        EXPECT_TRUE(throws.value_or(false) || Text(state) == Text(given)) << nth;
    }

    takes->Drop();
    replay::ReplayCore core(adaptor);
    const XMLNode state(whole);
    const std::size_t before = Allocations();
    const XMLNode copy(state);
    throws = false;
    // Whoever calls makes a copy first.
    for (std::size_t nth = Allocations() - before + 1; throws; ++nth) {
        SCOPED_TRACE(nth);
        throws = Throws(nth, [&] { core.SetCoreState(state); });
        if (throws.value_or(false)) {
            EXPECT_THROW(core.GetCoreState(), std::exception);
        }
        EXPECT_EQ(Text(core.GetCoreState()), whole);
        core.ResetCore();
    }
}

}  // namespace
