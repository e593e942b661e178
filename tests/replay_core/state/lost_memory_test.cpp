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

enum class Ended { kWell, kThrown };

// How the work ends while its nth allocation fails. Nothing if it does not make that many.
template <class Work>
std::optional<Ended> Failing(std::size_t nth, const Work& work) {
    const FailingAllocation fault(nth);
    Ended ended = Ended::kWell;
    try {
        work();
    } catch (const std::exception&) {
        ended = Ended::kThrown;
    }
    if (!fault.HasFailed()) return std::nullopt;
    return ended;
}

class LostMemory : public StateTest {
  protected:
    LostMemory() {
        const Names names = {"walk", "run"};
        for (replay::Take* take : takes->ForRecording(names))
            Record(*take, {"Hips", "Knee", "Foot"});
        whole = WholeText();
    }

    static std::string Text(const XMLNode& state) { return state.Write("\n", "\t", ""); }

    std::string whole;
};

TEST_F(LostMemory, StateIsGivenWholeOrNotAtAll) {
    replay::Take& run = *takes->Find("run");
    XMLNode given(replay::form::kRoot, "");
    run.HandleExtension(TVL::kSceneBeingSaved, &given);
    const std::string masterNode = Text(given);
    for (std::size_t nth = 1;; ++nth) {
        XMLNode state(replay::form::kRoot, "");
        const auto ended =
            Failing(nth, [&] { run.HandleExtension(TVL::kSceneBeingSaved, &state); });
        if (!ended) break;
        EXPECT_TRUE(*ended == Ended::kThrown || Text(state) == masterNode) << nth;
    }
    StoreSceneState();
    takes->Drop();
    replay::ReplayCore core(adaptor);
    core.SetCoreState(XMLNode(whole));
    for (std::size_t nth = 1;; ++nth) {
        XMLNode state;
        const auto ended = Failing(nth, [&] { state = core.GetCoreState(); });
        if (!ended) break;
        EXPECT_TRUE(*ended == Ended::kThrown || Text(state) == whole) << nth;
    }
}

TEST_F(LostMemory, StateThatWasNotTakenUpKeepsASceneFromBeingSavedWithoutIt) {
    takes->Drop();
    replay::ReplayCore core(adaptor);
    const XMLNode state(whole);
    const std::size_t before = Allocations();
    const XMLNode copy(state);
    // Whoever calls makes a copy first.
    for (std::size_t nth = Allocations() - before + 1;; ++nth) {
        SCOPED_TRACE(nth);
        const auto ended = Failing(nth, [&] { core.SetCoreState(state); });
        if (!ended) break;
        if (*ended == Ended::kThrown) {
            EXPECT_THROW(core.GetCoreState(), std::exception);
        }
        EXPECT_EQ(Text(core.GetCoreState()), whole);
        core.ResetCore();
    }
}

}  // namespace
