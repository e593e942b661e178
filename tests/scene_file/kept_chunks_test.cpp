#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "headless/scene_file_view.h"
#include "headless/session.h"
#include "host/gup.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/test_class.h"

namespace {

using Chunks = std::vector<std::pair<std::uint16_t, std::string>>;

// What the utility writes, and what it does to each chunk in turn when it loads.
Chunks written;
std::string reading;

class Reader final : public GUP {
  public:
    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override { delete this; }

    IOResult Save(ISave* save) override {
        for (const auto& [id, text] : written) {
            save->BeginChunk(id);
            save->WriteCString(text.c_str());
            save->EndChunk();
        }
        return IO_OK;
    }

    IOResult Load(ILoad* load) override {
        for (const char manner : reading) {
            if (manner == 'x') return IO_ERROR;  // before the next one, or behind the last
            if (load->OpenChunk() != IO_OK) break;
            char* text = nullptr;
            char some[100];
            if (manner == 'r' || manner == 'o') load->ReadCStringChunk(&text);
            if (manner == 'p') load->Read(some, 1, nullptr);            // a part of it
            if (manner == 'b') load->Read(some, sizeof some, nullptr);  // more than there is
            if (manner == 'f') return IO_ERROR;
            if (manner == 'o') return IO_OK;  // leaves it open
            load->CloseChunk();               // 's': skips it
        }
        return IO_OK;
    }
};

class KeptChunks : public testing::Test {
  protected:
    KeptChunks() {
        host.RegisterClass(&type);
        host.Start();
    }

    // The ids of what a save writes of the utility.
    std::string Saved(Chunks chunks) {
        written = std::move(chunks);
        EXPECT_EQ(host.SaveScene(file).error, "");
        std::string ids;
        for (const auto& utility : headless::ViewSceneFile(file).utilities)
            for (const auto& chunk : utility.chunks)
                ids += std::to_string(chunk.id);
        return ids;
    }

    TemporaryFolder folder;
    const std::string file = folder.File("scene");
    TestClass type{"Reader", GUP_CLASS_ID, {0x57, 0x58}, [] { return new Reader; }};
    headless::Session host;
};

TEST_F(KeptChunks, StandBesideWhatTheUtilityWritesItself) {
    const struct {
        const char* reading;
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
        SCOPED_TRACE(each.reading);
        host.NewScene();
        EXPECT_EQ(Saved({{1, "one"}, {2, "two"}, {3, "three"}}), "123");
        reading = each.reading;
        EXPECT_EQ(host.OpenScene(file).complaints.size(), each.complaints);
        EXPECT_EQ(Saved({}), each.alone);
        EXPECT_EQ(Saved({{9, "own"}}), each.beside);
        EXPECT_EQ(Saved({{9, "other"}}), each.beside) << "at the next save";
    }

    // An emptied scene has nothing to keep.
    EXPECT_EQ(host.UtilityChunks().at(0).isTaken, false);
    host.NewScene();
    EXPECT_EQ(Saved({}), "");

    // What it has written again to the byte does not grow from save to save.
    Saved({{9, "other"}, {1, "one"}, {2, "two"}, {3, "three"}});
    reading = "";
    EXPECT_TRUE(host.OpenScene(file).complaints.empty());
    EXPECT_EQ(Saved({{9, "other"}}), "1239");
    EXPECT_EQ(Saved({{9, "third"}}), "91239");
}

}  // namespace
