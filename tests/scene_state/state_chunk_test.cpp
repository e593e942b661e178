#include "adaptor/utility_manager.h"
#include "headless/memory_chunks.h"
#include "tests/support/allocations.h"
#include "tests/support/world.h"

namespace {

using Texts = std::vector<std::string>;
using StoredBytes = std::vector<std::byte>;

// A chunk that holds bytes, then further chunks.
struct StoredChunk {
    std::uint16_t id = 0;
    std::vector<StoredChunk> parts = {};
    std::string bytes = {};

    StoredChunk& operator[](std::size_t index) { return parts[index]; }

    void WriteTo(ISave* save) const {
        save->BeginChunk(id);
        save->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr);
        for (const StoredChunk& part : parts)
            part.WriteTo(save);
        save->EndChunk();
    }
};

StoredChunk TextChunk(std::uint16_t id, const std::string& text) {
    return {id, {}, text + '\0'};
}

std::string Number(std::uint32_t number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

class StateChunk : public testing::Test {
  protected:
    World world;

    // What the Core was given since the last time.
    Texts States() {
        Texts states;
        for (const std::string& call : world.Core().TakeCalls())
            if (call.starts_with("set state ")) states.push_back(call.substr(10));
        return states;
    }

    // `isWhole`: the loading does not end in a state chunk that cannot be read.
    Texts Loaded(std::span<const std::byte> bytes, bool isWhole = true) {
        headless::LoadBytes(bytes, [&](ILoad* load) {
            EXPECT_EQ(UtilityManager::Get().Load(load) == IO_OK, isWhole);
            EXPECT_TRUE(isWhole || load->CurChunkID() == 1032);
            return IO_OK;
        });
        return States();
    }
    static StoredBytes Bytes(const std::vector<StoredChunk>& chunks) {
        return headless::SavedBytes([&](ISave* save) {
            for (const StoredChunk& chunk : chunks)
                chunk.WriteTo(save);
            return IO_OK;
        });
    }
    static StoredBytes Saved() {
        return headless::SavedBytes([](ISave* save) { return UtilityManager::Get().Save(save); });
    }
};

TEST_F(StateChunk, HoldsTheCoresStateAsReadableTextIfThereIsAny) {
    world.Core().state = XMLNode("<TVL version='1'/>");
    EXPECT_TRUE(Saved().empty());
    world.Core().state.AddChild(XMLNode("take", "Walk"));
    EXPECT_EQ(Saved(),
              Bytes({TextChunk(1032, "<TVL version=\"1\">\n\t<take>Walk</take>\n</TVL>")}));
}

TEST_F(StateChunk, IsGivenToTheCoreEachInTurnAndThenTheOlderOnes) {
    const StoredChunk first = TextChunk(1032, "<TVL><a/></TVL>");
    const StoredChunk cut = TextChunk(1032, "<TVL><b/><c x='1>2'/><d/></TVL>");
    EXPECT_EQ(Loaded(Bytes({first, {7}, cut, {7}, TextChunk(1032, "")})),
              (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "", "<TVL/>"}));

    // A text that cannot be read ends the loading where it is. What the Core has not taken by then
    // is in no chunk that the host would keep.
    world.Core().onCall = [](const std::string&) { throw 1; };
    EXPECT_EQ(Loaded(Bytes({first, {1032}}), false), Texts{"<TVL><a/></TVL>"});
    world.Core().onCall = nullptr;
    world.Core().state = XMLNode("<TVL><b/></TVL>");
    const StoredBytes saved = Saved();
    world.Session().NewScene();
    EXPECT_EQ(Loaded(saved), (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL/>"}));
    EXPECT_LT(Saved().size(), saved.size());
}

// The Core refuses the first of two states, and at most times there is no memory for what comes
// then. The next save writes both ahead of what the Core has by then.
TEST_F(StateChunk, IsKeptUntilTheCoreTakesIt) {
    headless::Session& host = world.Session();
    const std::string file = (world.Folder() / "a.scene").string();
    const std::string again = (world.Folder() / "again.scene").string();
    std::size_t nth = 0;
    bool hasFailed = true;
    std::optional<FailingAllocation> fault;
    const auto openRefusing = [&] {
        world.Core().onCall = [&](const std::string& call) {
            if (fault) hasFailed = fault->HasFailed();
            fault.reset();
            if (call != "set state <TVL><a/></TVL>") return;
            if (nth > 0) fault.emplace(nth);
            throw 1;
        };
        EXPECT_EQ(host.OpenScene(file).complaints.size(), 1U) << nth;
        EXPECT_FALSE(host.UtilityChunks()[0].isTaken) << nth;
        world.Core().onCall = nullptr;
    };
    const auto save = [&](const char* state, const std::string& path) {
        world.Core().state = XMLNode(state);
        EXPECT_EQ(host.SaveScene(path).error, "");
    };
    save("<TVL><a/></TVL>", file);
    openRefusing();
    save("<TVL><b/></TVL>", file);
    while (hasFailed) {
        openRefusing();
        save("<TVL><c/></TVL>", again);
        States();
        EXPECT_TRUE(host.OpenScene(again).complaints.empty());
        Texts states = States();
        std::erase(states, "<TVL/>");
        if (nth > 0) std::ranges::sort(states);
        EXPECT_EQ(states, (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL><c/></TVL>"})) << nth;
        ++nth;
    }
    EXPECT_GT(nth, 10U);
}

StoredChunk Older() {
    const StoredChunk data{557,
                           {TextChunk(11, "unused"),
                            {22, {}, Number(2) + "abc"},
                            {99, {}, "other"},
                            {22, {}, Number(0)},
                            TextChunk(12, "<profile x='1'/>"),
                            {22, {}, Number(1) + "z"}}};
    const StoredChunk hip{23, {{40, {}, Number(4000000000)}, {99}, TextChunk(41, "Hip")}};
    const StoredChunk nodes{
        558, {{23, {TextChunk(41, "First")}}, hip, {23}, {23, {TextChunk(41, "Foot")}}}};
    return {1024, {{1, {TextChunk(2, "Actor"), TextChunk(3, "Rig")}}, {556, {data, nodes}}}};
}

const std::string kConverted =
    "<TVL_Plugin version=\"2.5\"><type>Actor</type><name>Rig</name>"
    "<savedata>YWI=</savedata><savedata>eg==</savedata><nodeinfo><node name=\"First\"/>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Foot\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node></nodeinfo>"
    "<inputprofile><profile x=\"1\"/></inputprofile></TVL_Plugin>";

TEST_F(StateChunk, OfTheOlderFormComesInTheFormOfToday) {
    // Behind it the loading ends early, and the next save has it in its place.
    EXPECT_TRUE(Loaded(Bytes({Older(), {1032}}), false).empty());
    world.Core().state = XMLNode("<TVL><a/></TVL>");
    EXPECT_EQ(Loaded(Saved()),
              (Texts{"<TVL>" + kConverted + "</TVL>", "<TVL><a/></TVL>", "<TVL/>"}));
}

TEST_F(StateChunk, OfTheOlderFormIsLeftOutWhereAnythingIsWrongAndTheNextOneIsRead) {
    using Damage = void (*)(StoredChunk&);
    const Damage damages[] = {
        [](StoredChunk& older) { older[0].parts.pop_back(); },
        [](StoredChunk& older) { older[0].parts.clear(); },
        [](StoredChunk& older) { older[0][0].bytes = ""; },
        [](StoredChunk& older) { older[1].id = 555; },
        [](StoredChunk& older) { older[1][0].id = 558; },
        [](StoredChunk& older) { older[1][0][4].bytes = ""; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(4) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(0x7FFFFFFF) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(0xFFFFFFFF) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = "abc"; },
        [](StoredChunk& older) { older[1][1][2].id = 24; },
        [](StoredChunk& older) { older[1][1][1][0].bytes = "abc"; },
        // Taken over by the entry behind it, as all further ones would.
        [](StoredChunk& older) { older[1][1][1][2] = TextChunk(41, std::string(1000, 'n')); },
    };
    for (std::size_t index = 0; index < std::size(damages); ++index) {
        StoredChunk older = Older();
        damages[index](older);
        EXPECT_EQ(Loaded(Bytes({older, Older()})), Texts{"<TVL>" + kConverted + "</TVL>"})
            << "damage " << index;
    }
}

}  // namespace
