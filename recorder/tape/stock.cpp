#include "recorder/tape/stock.h"

#include <algorithm>

#include "recorder/stream/notes.h"

namespace recorder {
namespace {

using Words = std::vector<std::uint64_t>;

// The words that are there from that offset on, as many as there is room for.
std::span<const std::uint64_t> ReadWords(const MappedFile& file, std::uint64_t offset,
                                         Words& words) {
    const std::size_t bytes = file.Read(offset, std::as_writable_bytes(std::span(words)));
    return std::span(words).first(bytes / 8);
}

// A file that was made and not written to holds nothing to lose.
bool IsBlank(const MappedFile& file) {
    Words words(kSegmentGrain / 8);
    const std::uint64_t size = file.Size();
    for (std::uint64_t offset = 0; offset < size; offset += kSegmentGrain) {
        std::ranges::fill(words, 0);
        ReadWords(file, offset, words);
        if (std::ranges::any_of(words, [](std::uint64_t word) { return word != 0; })) return false;
    }
    return true;
}

void TakeIn(std::size_t place, const SegmentHead& head, const SegmentContents& contents,
            Stock& stock) {
    std::uint64_t session = head.session;
    bool isFirst = true;
    bool isSaved = false;
    stock.slots.Put(place, head.number, session);
    for (const auto& [at, record] : contents.pieces) {
        if (!record || IsToldAgain(record->head)) continue;
        if (record->head.kind == RecordKind::kSession && !isFirst)
            stock.slots.SessionBegan(place, ++session);
        isSaved = IsSave(*record);
        if (isSaved) stock.slots.Saved(session, head.number);
        isFirst = false;
    }
    stock.session = std::max(stock.session, session);
    if (head.number <= stock.newest.number) return;  // there can be a copy of it
    stock.newest = head;
    stock.place = place;
    stock.used = contents.end * 8;
    stock.isClosed = isSaved;
}

}  // namespace

std::string TakeStock(const MappedFile& file, Stock& stock) {
    const std::uint64_t size = file.Size();
    Words words(kSegmentHeadWords);
    const auto wordsAt = [&](std::uint64_t offset) { return ReadWords(file, offset, words); };
    const std::uint64_t segmentBytes = SegmentBytesOf(size, wordsAt);
    if (segmentBytes == 0) return IsBlank(file) ? std::string() : kNoTape;
    stock.segmentBytes = segmentBytes;
    words.resize(segmentBytes / 8);
    for (std::size_t place = 0; place * segmentBytes < size; ++place) {
        const auto segment = ReadWords(file, place * segmentBytes, words);
        const auto head = ReadSegmentHead(segment);
        if (head && head->version > kTapeVersion) return kNewerTape;
        if (head && head->bytes == segmentBytes)
            TakeIn(place, *head, ReadSegment(segment, head->number), stock);
        else
            stock.slots.Clear(place);
    }
    return {};
}

bool IsSave(const Record& record) {
    return NoteOf(record).word == note::kSaved;
}

}  // namespace recorder
