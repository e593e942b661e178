#include <algorithm>
#include <random>

#include "headless/memory_chunks.h"
#include "tests/scene_file/file_world.h"

// Chunks that reach beyond what waits in memory: their lengths are filled in when their beginnings
// have gone to the disk.
namespace {

// Saves chunks at random, which nest, with bytes before, between and behind them: the same ones
// whenever it is asked.
struct Heap final : odd::Thing<HelperObject> {
    unsigned seed = 0;

    Class_ID ClassID() override { return {0x61, 0x62}; }
    IOResult Save(ISave* save) override {
        std::minstd_rand random(seed);
        for (std::uint16_t id = 1; id < 6; ++id)
            SaveChunk(*save, id, 3, random);
        return IO_OK;
    }

    static void SaveChunk(ISave& save, std::uint16_t id, int depth, std::minstd_rand& random) {
        save.BeginChunk(id);
        for (std::uint16_t part = 0; part < 4; ++part) {
            // Each length up to half a megabyte is as likely as any other of so many digits.
            std::string bytes(random() % (1U << random() % 20), '\0');
            std::ranges::generate(bytes, [&] { return static_cast<char>(random() >> 8); });
            save.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr);
            if (depth > 0 && random() % 2 > 0) SaveChunk(save, part, depth - 1, random);
        }
        save.EndChunk();
    }
};

using LargeChunks = FileWorld;

TEST_F(LargeChunks, AreInTheFileWhatTheyAreInMemoryAndHaveTheirChecksums) {
    Start(false);
    std::vector<std::string> saved;
    for (unsigned seed = 1; seed <= 2; ++seed) {
        auto* heap = new Heap;
        heap->seed = seed;
        Add("heap", heap);
        const std::vector<std::byte> bytes = headless::SavedBytes(*heap);
        saved.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    const std::string file = Save("large");  // which reads it back and checks it
    std::size_t place = 0;
    for (const std::string& bytes : saved) {
        place = file.find(bytes, place);
        ASSERT_NE(place, std::string::npos);
        place += bytes.size();
    }
    EXPECT_EQ(Open("large").size(), 1U);  // nobody knows the class
    EXPECT_EQ(Save("again"), file);
}

}  // namespace
