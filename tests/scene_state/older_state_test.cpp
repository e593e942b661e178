#include <string>

#include "tests/scene_state/state_test.h"

namespace {

std::string Number(std::uint32_t number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

StoredChunk Older() {
    const StoredChunk names{1, "", {TextChunk(2, "Actor"), TextChunk(3, "Rig")}};
    const StoredChunk data{557,
                           "",
                           {TextChunk(11, "unused"),
                            {22, Number(2) + "abc"},
                            {99, "other"},
                            {22, Number(0)},
                            TextChunk(12, "<profile x='1'/>"),
                            {22, Number(1) + "z"}}};
    const StoredChunk hip{23, "", {{40, Number(4000000000)}, {99}, TextChunk(41, "Hip")}};
    const StoredChunk nodes{
        558,
        "",
        {{23, "", {TextChunk(41, "First")}}, hip, {23}, {23, "", {TextChunk(41, "Foot")}}}};
    return {1024, "", {names, {556, "", {data, nodes}}}};
}

const std::string kConverted =
    "<TVL_Plugin version=\"2.5\"><type>Actor</type><name>Rig</name>"
    "<savedata>YWI=</savedata><savedata>eg==</savedata><nodeinfo><node name=\"First\"/>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Foot\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node></nodeinfo>"
    "<inputprofile><profile x=\"1\"/></inputprofile></TVL_Plugin>";

using OlderState = StateTest;

TEST_F(OlderState, ComesInTheFormOfToday) {
    StoredChunk bare = Older();
    bare[1][0].parts.clear();
    bare[1][1].parts.clear();
    EXPECT_EQ(Loaded(Bytes({Older(), {7}, bare})),
              Texts{"<TVL>" + kConverted +
                    "<TVL_Plugin version=\"2.5\"><type>Actor</type><name>Rig</name><nodeinfo/>"
                    "<inputprofile/></TVL_Plugin></TVL>"});

    // Behind it the loading ends early, and the next save has it in its place.
    EXPECT_TRUE(Loaded(Bytes({Older(), {1032}}), false).empty());
    world.Core().state = XMLNode("<TVL><a/></TVL>");
    EXPECT_EQ(Loaded(Saved()),
              (Texts{"<TVL>" + kConverted + "</TVL>", "<TVL><a/></TVL>", "<TVL/>"}));
}

TEST_F(OlderState, IsLeftOutWhereAnythingIsWrongAndTheNextOneIsRead) {
    using Damage = void (*)(StoredChunk&);
    const Damage damages[] = {
        [](StoredChunk& older) { older.parts.clear(); },
        [](StoredChunk& older) { older[0].parts.pop_back(); },
        [](StoredChunk& older) { older[0][0].bytes = ""; },
        [](StoredChunk& older) { older.parts.pop_back(); },
        [](StoredChunk& older) { older[1].id = 555; },
        [](StoredChunk& older) { older[1][0].id = 558; },
        [](StoredChunk& older) { older[1][0][0].bytes = ""; },
        [](StoredChunk& older) { older[1][0][4].bytes = ""; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(4) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(0x7FFFFFFF) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = Number(0xFFFFFFFF) + "abc"; },
        [](StoredChunk& older) { older[1][0][1].bytes = "abc"; },
        [](StoredChunk& older) { older[1].parts.pop_back(); },
        [](StoredChunk& older) { older[1][1].id = 559; },
        [](StoredChunk& older) { older[1][1][2].id = 24; },
        [](StoredChunk& older) { older[1][1][1][0].bytes = "abc"; },
        [](StoredChunk& older) { older[1][1][1][2].bytes = ""; },
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
