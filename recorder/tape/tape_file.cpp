#include "recorder/tape/tape_file.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "platform/narrow_path.h"

namespace recorder {
namespace {

bool HasNothing(std::span<const std::uint64_t> words) {
    return std::ranges::all_of(words, [](std::uint64_t word) { return word == 0; });
}

// Where segments are written there is none for a moment, when the next one begins.
void TakeSegment(TapeFile& tape, std::size_t at, std::size_t size) {
    const auto file = std::span<const std::uint64_t>(tape.words);
    const auto words = file.subspan(at, std::min(size, file.size() - at));
    const auto head = ReadSegmentHead(words);
    if (head && head->version > kTapeVersion)
        throw std::runtime_error(tape.name + ": " + kNewerTape);
    if (head && head->bytes == size * 8)
        tape.segments.push_back({*head, at * 8, ReadSegment(words, head->number)});
    else if (!HasNothing(words) && (at >= kDesks * size || words.front() != 0))
        tape.damages.push_back(
            AtByte(at * 8, "the head of a segment is damaged, which is passed over"));
}

// Of a segment that was just being copied there are two, of which one can be a part.
void Sort(std::vector<Segment>& segments) {
    const auto order = [](const Segment& one, const Segment& other) {
        return std::tuple(one.head.number, other.contents.end) <
               std::tuple(other.head.number, one.contents.end);
    };
    const auto isSame = [](const Segment& one, const Segment& other) {
        return one.head.number == other.head.number;
    };
    std::stable_sort(segments.begin(), segments.end(), order);
    segments.erase(std::unique(segments.begin(), segments.end(), isSame), segments.end());
}

TapeFile Load(TapeFile tape) {
    const std::span<const std::uint64_t> file = tape.words;
    const auto wordsAt = [&](std::uint64_t offset) { return file.subspan(offset / 8); };
    const std::size_t size = SegmentBytesOf(file.size_bytes(), wordsAt) / 8;
    if (size == 0 && HasNothing(file)) return tape;
    if (size == 0) throw std::runtime_error(tape.name + ": " + kNoTape);
    for (std::size_t at = 0; at < tape.words.size(); at += size) {
        tape.TellDone(1, at * 8);
        TakeSegment(tape, at, size);
    }
    Sort(tape.segments);
    return tape;
}

TapeFile WithRoom(const std::string& name, std::uint64_t bytes, TapeProgress progress) {
    TapeFile tape{.name = name, .bytes = bytes, .progress = std::move(progress)};
    tape.TellDone(0, 0);
    tape.words.resize(static_cast<std::size_t>((bytes + 7) / 8));
    return tape;
}

// What is there of it; a file can become shorter meanwhile.
void ReadBytes(std::istream& file, TapeFile& tape) {
    constexpr std::uint64_t kBlock = std::uint64_t{1} << 24;
    auto* const bytes = reinterpret_cast<char*>(tape.words.data());
    std::uint64_t done = 0;
    while (file && done < tape.bytes) {
        tape.TellDone(0, done);
        file.read(bytes + done, static_cast<std::streamsize>(std::min(kBlock, tape.bytes - done)));
        done += static_cast<std::uint64_t>(file.gcount());
    }
    tape.bytes = done;
}

}  // namespace

void TapeFile::TellDone(int times, std::uint64_t more) const {
    const std::uint64_t whole = 3 * bytes;
    const std::uint64_t done = static_cast<std::uint64_t>(times) * bytes + more;
    if (progress && !progress(done, whole))
        throw std::runtime_error(name + ": given up when " +
                                 std::to_string(whole == 0 ? 100 : 100 * done / whole) +
                                 " % were read");
}

std::string AtByte(std::uint64_t byte, const std::string& what) {
    return "at byte " + std::to_string(byte) + ": " + what;
}

TapeFile LoadTape(const std::string& path, TapeProgress progress) {
    namespace fs = std::filesystem;
    const fs::path place = platform::FromNarrow(path);
    std::error_code error;
    const std::uintmax_t size = fs::file_size(place, error);
    std::ifstream file(place, std::ios::binary);
    if (error || !file)
        throw std::runtime_error(
            path + (fs::exists(place, error) ? ": it cannot be read" : ": there is no such file"));
    TapeFile tape = WithRoom(path, size, std::move(progress));
    ReadBytes(file, tape);
    return Load(std::move(tape));
}

TapeFile LoadTape(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    TapeFile tape = WithRoom(name, bytes.size(), {});
    if (!bytes.empty()) std::memcpy(tape.words.data(), bytes.data(), bytes.size());
    return Load(std::move(tape));
}

}  // namespace recorder
