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
    const struct {
        const char* loading;
        std::size_t complaints;
        const char* alone;   // ids where the utility writes nothing at its next save
        const char* beside;  // ids where it writes the chunk 9
    } cases[] = {
        {"", 0, "123", "1239"},    {"rrr", 0, "", "9"},      {"rro", 0, "", "9"},
        {"rsr", 0, "2", "29"},     {"r", 0, "23", "239"},    {"rpr", 1, "2", "29"},
        {"brr", 1, "1", "19"},     {"rfr", 1, "123", "923"}, {"rrrx", 1, "123", "1239"},
        {"pfr", 1, "123", "9123"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.loading);
        host->NewScene();
        EXPECT_EQ(Saved(stored), "123");
        odd::loading = each.loading;
        EXPECT_EQ(Open("scene").size(), each.complaints);
        EXPECT_EQ(Saved({}), each.alone);
        EXPECT_EQ(Saved({{9, "own"}}), each.beside);
        EXPECT_EQ(Saved({{9, "other"}}), each.beside) << "at the next save";
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
