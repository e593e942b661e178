#include <string>

#include "adaptor/utility_manager.h"
#include "headless/memory_chunks.h"
#include "tests/scene_state/state_test.h"

namespace {

// A chunk that holds bytes, then further chunks.
struct Chunk {
    std::uint16_t id = 0;
    std::string bytes;
    std::vector<Chunk> parts;

    Chunk& operator[](std::size_t index) { return parts[index]; }
};

void WriteTo(ISave* save, const Chunk& chunk) {
    save->BeginChunk(chunk.id);
    save->Write(chunk.bytes.data(), static_cast<std::uint32_t>(chunk.bytes.size()), nullptr);
    for (const Chunk& part : chunk.parts)
        WriteTo(save, part);
    save->EndChunk();
}

std::string Text(std::string text) {
    return text + '\0';
}

std::string Number(std::uint32_t number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

Chunk Older() {
    return {1024,
            "",
            {{1, "", {{2, Text("Actor"), {}}, {3, Text("Rig"), {}}}},
             {556,
              "",
              {{557,
                "",
                {{11, Text("unused"), {}},
                 {22, Number(2) + "abc", {}},
                 {99, "other", {}},
                 {22, Number(0), {}},
                 {12, Text("<profile x='1'/>"), {}},
                 {22, Number(1) + "z", {}}}},
               {558,
                "",
                {{23, "", {{41, Text("First"), {}}}},
                 {23, "", {{40, Number(4000000000), {}}, {99, "", {}}, {41, Text("Hip"), {}}}},
                 {23, "", {}},
                 {23, "", {{41, Text("Foot"), {}}}}}}}}}};
}

constexpr const char* kConverted =
    "<TVL_Plugin version=\"2.5\"><type>Actor</type><name>Rig</name>"
    "<savedata>YWI=</savedata><savedata>eg==</savedata><nodeinfo><node name=\"First\"/>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Hip\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node>"
    "<node name=\"Foot\"><UID platform=\"adaptor_3dsmax9\">4000000000</UID></node></nodeinfo>"
    "<inputprofile><profile x=\"1\"/></inputprofile></TVL_Plugin>";

class OlderState : public StateTest {
  protected:
    static std::vector<std::byte> Saved(const std::vector<Chunk>& chunks) {
        return headless::SavedBytes([&](ISave* save) {
            for (const Chunk& chunk : chunks)
                WriteTo(save, chunk);
            return IO_OK;
        });
    }

    Texts Loaded(std::span<const std::byte> bytes) {
        headless::LoadBytes(bytes, [](ILoad* load) { return UtilityManager::Get().Load(load); });
        return States();
    }
};

TEST_F(OlderState, ComesInTheFormOfToday) {
    Chunk bare = Older();
    bare[1][0].parts.clear();
    bare[1][1].parts.clear();
    EXPECT_EQ(Loaded(Saved({Older(), {7, "", {}}, bare})),
              Texts{std::string("<TVL>") + kConverted +
                    "<TVL_Plugin version=\"2.5\"><type>Actor</type><name>Rig</name><nodeinfo/>"
                    "<inputprofile/></TVL_Plugin></TVL>"});

    // Behind it the loading ends early, and the next save has it in its place.
    EXPECT_TRUE(Loaded(Saved({Older(), {1032, "", {}}})).empty());
    world.Core().state = XMLNode("<TVL><a/></TVL>");
    const std::vector<std::byte> saved =
        headless::SavedBytes([](ISave* save) { return UtilityManager::Get().Save(save); });
    EXPECT_EQ(Loaded(saved),
              (Texts{std::string("<TVL>") + kConverted + "</TVL>", "<TVL><a/></TVL>", "<TVL/>"}));
}

TEST_F(OlderState, IsLeftOutWhereAnythingIsWrongAndTheNextOneIsRead) {
    using Damage = void (*)(Chunk&);
    const Damage damages[] = {
        [](Chunk& older) { older.parts.clear(); },
        [](Chunk& older) { older[0].parts.clear(); },
        [](Chunk& older) { older[0].parts.pop_back(); },
        [](Chunk& older) { older[0][0].bytes = ""; },
        [](Chunk& older) { older[0][1].bytes.clear(); },
        [](Chunk& older) { older.parts.pop_back(); },
        [](Chunk& older) { older[1].id = 555; },
        [](Chunk& older) { older[1].parts.clear(); },
        [](Chunk& older) { older[1][0].id = 558; },
        [](Chunk& older) { older[1][0][0].bytes = ""; },
        [](Chunk& older) { older[1][0][4].bytes = ""; },
        [](Chunk& older) { older[1][0][1].bytes = Number(4) + "abc"; },
        [](Chunk& older) { older[1][0][1].bytes = Number(0x7FFFFFFF) + "abc"; },
        [](Chunk& older) { older[1][0][1].bytes = Number(0xFFFFFFFF) + "abc"; },
        [](Chunk& older) { older[1][0][1].bytes = "abc"; },
        [](Chunk& older) { older[1].parts.pop_back(); },
        [](Chunk& older) { older[1][1].id = 559; },
        [](Chunk& older) { older[1][1][2].id = 24; },
        [](Chunk& older) { older[1][1][1][0].bytes = "abc"; },
        [](Chunk& older) { older[1][1][1][2].bytes = ""; },
        // Taken over by the entry behind it, as all further ones would.
        [](Chunk& older) { older[1][1][1][2].bytes = Text(std::string(1000, 'n')); },
    };
    const Texts whole = {std::string("<TVL>") + kConverted + "</TVL>"};
    for (std::size_t index = 0; index < std::size(damages); ++index) {
        Chunk older = Older();
        damages[index](older);
        EXPECT_EQ(Loaded(Saved({older, Older()})), whole) << "damage " << index;
    }
}

}  // namespace
