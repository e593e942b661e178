#include <tuple>

#include "headless/scene_file_view.h"
#include "tests/scene_file/file_world.h"

namespace {

class KeptChunks : public FileWorld {
  protected:
    KeptChunks() { Start(Classes::kKnown); }

    // The ids of what a save writes of the utility.
    std::string Saved(odd::Chunks chunks) {
        odd::Utility::written = std::move(chunks);
        Save("scene");
        std::string ids;
        for (const auto& utility : headless::ViewSceneFile(File("scene")).utilities)
            for (const auto& chunk : utility.chunks)
                ids += std::to_string(chunk.id);
        return ids;
    }
};

TEST_F(KeptChunks, StandBesideWhatTheUtilityWritesItself) {
    const odd::Chunks stored{{1, "one"}, {2, "two"}, {3, "three"}};
    // How the utility loads, complaints of it, and the ids that are saved where the utility writes
    // nothing at its next save, and where it writes the chunk 9.
    const std::tuple<const char*, std::size_t, const char*, const char*> cases[] = {
        {"", 0, "123", "1239"},    {"rrr", 0, "", "9"},      {"rro", 0, "", "9"},
        {"rsr", 0, "2", "29"},     {"r", 0, "23", "239"},    {"rpr", 1, "2", "29"},
        {"brr", 1, "1", "19"},     {"rfr", 1, "123", "923"}, {"rrrx", 1, "123", "1239"},
        {"pfr", 1, "123", "9123"},
    };
    for (const auto& [loading, complaints, alone, beside] : cases) {
        SCOPED_TRACE(loading);
        host->NewScene();
        EXPECT_EQ(Saved(stored), "123");
        odd::loading = loading;
        EXPECT_EQ(Open("scene").size(), complaints);
        EXPECT_EQ(Saved({}), alone);
        EXPECT_EQ(Saved({{9, "own"}}), beside);
        EXPECT_EQ(Saved({{9, "other"}}), beside) << "at the next save";
    }

    // An emptied scene has nothing to keep.
    EXPECT_FALSE(host->UtilityChunks().at(0).isTaken);
    host->NewScene();
    EXPECT_EQ(Saved({}), "");

    // What it has written again to the byte does not grow from save to save.
    Saved({{9, "other"}, stored[0], stored[1], stored[2]});
    odd::loading = "";
    EXPECT_TRUE(Open("scene").empty());
    EXPECT_EQ(Saved({{9, "other"}}), "1239");
    EXPECT_EQ(Saved({{9, "third"}}), "91239");
}

}  // namespace
