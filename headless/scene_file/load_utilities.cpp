#include <algorithm>

#include "scene_file/scene_file.h"
#include "scene_file/thrown_words.h"
#include "storage/chunk_reader.h"

namespace headless {
namespace {

// Notes whether anybody has opened a chunk.
class NotingReader final : public ILoad {
  public:
    explicit NotingReader(ChunkReader reader) : reader_(std::move(reader)) {}

    IOResult OpenChunk() override {
        const IOResult result = reader_.OpenChunk();
        hasOpened_ |= result == IO_OK;
        return result;
    }
    std::uint16_t CurChunkID() override { return reader_.CurChunkID(); }
    IOResult CloseChunk() override { return reader_.CloseChunk(); }
    IOResult Read(void* bytes, std::uint32_t count, std::uint32_t* read) override {
        return reader_.Read(bytes, count, read);
    }
    IOResult ReadCStringChunk(char** text) override { return reader_.ReadCStringChunk(text); }

    bool HasOpened() const { return hasOpened_; }

  private:
    ChunkReader reader_;
    bool hasOpened_ = false;
};

GUP* Find(std::span<const RunningUtility> running, const StoredClass& type) {
    const auto found = std::ranges::find_if(running, [&](const RunningUtility& utility) {
        return utility.descriptor->SuperClassID() == type.superClass &&
               utility.descriptor->ClassID() == type.id;
    });
    return found != running.end() ? found->utility : nullptr;
}

}  // namespace

std::vector<KeptChunks> SceneFileReader::LoadUtilities(std::span<const RunningUtility> running,
                                                       std::vector<std::string>& complaints) {
    std::vector<KeptChunks> kept;
    for (const StoredUtility& stored : document_.utilities) {
        bool taken = false;
        if (GUP* const utility = Find(running, stored.type)) {
            NotingReader reader(ChunkReader(*source_, stored.chunks.begin, stored.chunks.end));
            std::string failure;
            try {
                const IOResult result = utility->Load(&reader);
                taken = result == IO_OK && reader.HasOpened();
                if (result != IO_OK) failure = "could not read its chunks";
            } catch (...) {
                failure = "could not read its chunks (" + ThrownWords() + ")";
            }
            if (!failure.empty()) {
                complaints.push_back(path_ + ": at byte " + std::to_string(stored.chunks.begin) +
                                     ": " + stored.type.name + " " + failure +
                                     "; they are kept as they are stored");
            }
        }
        if (!taken) kept.push_back({stored.type, BytesOf(stored.chunks)});
    }
    return kept;
}

}  // namespace headless
