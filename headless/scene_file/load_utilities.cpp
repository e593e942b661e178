#include <algorithm>
#include <new>

#include "headless/breaches/breach_book.h"
#include "headless/scene_file/scene_file.h"
#include "headless/scene_file/words.h"

namespace headless {
namespace {

GUP* Find(std::span<const RunningUtility> running, const StoredClass& type) {
    const auto found = std::ranges::find_if(running, [&](const RunningUtility& utility) {
        return utility.descriptor->SuperClassID() == type.superClass &&
               utility.descriptor->ClassID() == type.id;
    });
    return found != running.end() ? found->utility : nullptr;
}

// What the utility's loading came to; in words if it failed. A lack of memory says nothing of the
// file, and ends the work on it.
std::string LoadFailure(GUP& utility, NotingReader& reader) {
    try {
        if (utility.Load(&reader) == IO_OK) return {};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return "could not read its chunks (" + ThrownWords() +
               "); they are kept as they are stored";
    }
    return "could not read its chunks; they are kept as they are stored";
}

}  // namespace

std::vector<std::byte> SceneFileReader::BytesOf(const std::vector<StoredRange>& ranges) {
    std::vector<std::byte> all;
    for (const StoredRange& range : ranges) {
        const std::vector<std::byte> bytes = BytesOf(range);
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

KeptChunks SceneFileReader::LoadUtility(const StoredUtility& stored, GUP& utility,
                                        std::vector<std::string>& complaints) {
    const auto complain = [&](std::uint64_t place, const std::string& what) {
        complaints.push_back(path_ + ": at byte " + std::to_string(place) + ": " +
                             stored.type.name + " " + what);
    };
    NotingReader reader(*source_, stored.chunks);
    const HostEvent event("the loading", stored.type.name.c_str());
    const std::string failure = LoadFailure(utility, reader);
    reader.End(failure.empty());
    const std::vector<std::byte> unread = BytesOf(reader.Unread());
    if (!failure.empty()) {
        complain(stored.chunks.begin, failure);
        // Behind them all it says only that it has not taken everything that it has read.
        return {stored.type, BytesOf(stored.chunks), reader.IsInside(), unread};
    }
    if (const std::optional<StoredRange> misfit = reader.Misfit()) {
        complain(misfit->begin,
                 "could not read all of a chunk as it is; it is kept as it is stored");
    }
    return {.type = stored.type, .chunks = unread};
}

std::vector<KeptChunks> SceneFileReader::LoadUtilities(std::span<const RunningUtility> running,
                                                       std::vector<std::string>& complaints) {
    std::vector<KeptChunks> kept;
    for (const StoredUtility& stored : document_.utilities) {
        GUP* const utility = Find(running, stored.type);
        KeptChunks left = utility
                              ? LoadUtility(stored, *utility, complaints)
                              : KeptChunks{.type = stored.type, .chunks = BytesOf(stored.chunks)};
        if (!left.chunks.empty()) kept.push_back(std::move(left));
    }
    return kept;
}

}  // namespace headless
