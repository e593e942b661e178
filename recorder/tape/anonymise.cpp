#include "recorder/tape/anonymise.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "recorder/stream/notes.h"
#include "recorder/stream/record_reader.h"
#include "tvl/xml_node.h"

namespace recorder {
namespace {

using Words = std::vector<std::uint64_t>;

// A number names nobody, and nor does a row of them.
bool IsNumber(std::string_view text) {
    constexpr std::string_view kBeginnings = "0123456789.+- ";
    return text.empty() || (kBeginnings.find(text.front()) != text.npos &&
                            text.find_first_not_of("0123456789.+-eE ") == text.npos);
}

bool HasDigest(std::string_view word) {
    return word == note::kOpened || word == note::kMerged || word == note::kSaved ||
           word == note::kScene || word == note::kRead;
}

// What the adaptor says of itself and of the system, which a player compares with its own.
bool IsOfSystem(Operation operation) {
    switch (operation) {
        case Operation::AdaptorInterface_GetName:
        case Operation::AdaptorInterface_GetShortName:
        case Operation::AdaptorInterface_GetPlatformName:
        case Operation::AdaptorInterface_GetPlatformVersion:
        case Operation::AdaptorInterface_GetOptionsPanel:
        case Operation::CExtendable_ListExtensions:
            return true;
        default:
            return false;
    }
}

// Goes through the values of one record, which are good, and replaces texts where they lie.
class Values {
  public:
    Values(std::span<std::uint64_t> words, OtherTexts& texts) : rest_(words), texts_(texts) {}

    void Step(std::size_t words) { rest_ = rest_.subspan(words); }
    void Replace(char letter) {
        if (letter == 's')
            ReplaceText(0);
        else if (letter == 't')
            ReplaceTree();
        else if (letter == 'x' && static_cast<char>(rest_.front()) == 't')
            Step(1), ReplaceTree();
        else
            Keep(letter);
    }
    void Keep(char letter) { Step(ValueReader(rest_).Skip(letter).size()); }

    // All but so many of its first letters.
    void ReplaceText(std::size_t kept) {
        const std::string_view text = ValueReader(rest_).Text();
        kept = std::min(kept, text.size());
        if (!IsNumber(text.substr(kept))) texts_.Replace(Letters() + kept, text.size() - kept);
        Keep('s');
    }

    // The word of the step stays, and so do numbers.
    void ReplaceWords() {
        const std::string_view text = ValueReader(rest_).Text();
        std::size_t at = std::min(text.find(' '), text.size());
        while (at < text.size()) {
            const std::size_t end = std::min(text.find(' ', at + 1), text.size());
            if (!IsNumber(text.substr(at, end - at)))
                texts_.Replace(Letters() + at + 1, end - at - 1);
            at = end;
        }
        Keep('s');
    }

  private:
    char* Letters() { return reinterpret_cast<char*>(&rest_[1]); }

    // Elements lie one behind the other, so that none needs to be known of those around it.
    void ReplaceTree() {
        const std::size_t end = rest_.size() - ValueReader(rest_).Skip('t').size();
        Step(1);
        while (rest_.size() > end) {
            const auto kind = static_cast<std::int32_t>(rest_.front());
            Step(1);
            kind == XMLNode::kElement ? Keep('s') : ReplaceText(0);
            const std::uint64_t attributes = rest_.front();
            Step(1);
            for (std::uint64_t i = 0; i < attributes; ++i) {
                Keep('s');
                ReplaceText(0);
            }
            Step(1);  // the count of children
        }
    }

    std::span<std::uint64_t> rest_;
    OtherTexts& texts_;
};

void ReplaceInNote(Values values, std::string_view word) {
    constexpr std::size_t kDigest = 17;  // and the blank behind it
    values.Keep('s');
    if (word == note::kStep)
        values.ReplaceWords();
    else
        values.ReplaceText(HasDigest(word) ? kDigest : 0);
}

// Words of a record that is good; sealed again, without salt.
void Replace(std::span<std::uint64_t> words, const Record& record, OtherTexts& texts) {
    Values values(words.subspan(kHeadWords), texts);
    const RecordHead& head = record.head;
    if (head.kind == RecordKind::kSession) {
        for (const char letter : {'s', 'i', 's'})
            values.Keep(letter);
        values.Replace('s');  // the Core's library
    } else if (head.kind == RecordKind::kNote) {
        ReplaceInNote(values, ValueReader(record).Text());
    } else if (head.kind != RecordKind::kAnswer || !IsOfSystem(head.operation)) {
        for (const char letter : LettersOf(head))
            values.Replace(letter);
    }
    Seal(words);
}

// Goes through a tape's pieces, and puts others into a file that has nothing yet.
class Copy {
  public:
    explicit Copy(const TapeFile& tape) : file_(tape.words.size()) {
        std::uint64_t done = 0;
        for (const Segment& segment : tape.segments) {
            tape.TellDone(2, done);
            TakeSegment(segment);
            done += segment.head.bytes;
        }
    }

    Words Take() { return std::move(file_); }

  private:
    struct Place {
        std::span<std::uint64_t> words;
        std::uint64_t number;  // of the segment
    };

    void TakeSegment(const Segment& segment) {
        const std::size_t at = segment.offset / 8;
        std::memcpy(&file_[at], &segment.head, sizeof segment.head);
        for (const auto& [offset, record] : segment.contents.pieces)
            if (record) TakePiece(*record, {WordsAt(at + offset, *record), segment.head.number});
    }

    std::span<std::uint64_t> WordsAt(std::size_t at, const Record& record) {
        return std::span(file_).subspan(at, record.head.size / 8);
    }

    void TakePiece(const Record& record, const Place& place) {
        std::memcpy(place.words.data(), &record.head, sizeof record.head);
        if (record.head.kind == kPart) {
            TakePart(record, place);
        } else if (AreValuesGood(record)) {
            std::ranges::copy(record.values, place.words.begin() + kHeadWords);
            Replace(place.words, record, texts_);
        }
        Finish(place);
    }

    // Until all are there, a part has zeros.
    void TakePart(const Record& part, const Place& place) {
        if (part.head.object != joined_.size() * 8) {
            joined_.clear();
            parts_.clear();
        }
        if (part.head.object != joined_.size() * 8) return;
        joined_.insert(joined_.end(), part.values.begin(), part.values.end());
        parts_.push_back(place);
        if (joined_.size() * 8 < part.head.call) return;
        const auto record = ReadRecord(joined_);
        if (record && record->head.size == joined_.size() * 8 && AreValuesGood(*record))
            Scatter(*record);
        joined_.clear();
        parts_.clear();
    }

    void Scatter(const Record& record) {
        Replace(joined_, record, texts_);
        std::span<const std::uint64_t> rest = joined_;
        for (const Place& place : parts_) {
            const std::size_t size = place.words.size() - kHeadWords;
            std::ranges::copy(rest.first(size), place.words.begin() + kHeadWords);
            rest = rest.subspan(size);
            Finish(place);
        }
    }

    static void Finish(const Place& place) {
        Seal(place.words);
        place.words.front() ^= std::uint64_t{SaltOf(place.number)} << 32;
    }

    Words file_;
    OtherTexts texts_;
    Words joined_;              // of a record in parts, up to where it was read
    std::vector<Place> parts_;  // where these lie
};

}  // namespace

OtherTexts::OtherTexts() {
    std::random_device device;
    std::seed_seq seed{device(), device(), device(), device(), device(), device(), device()};
    random_.seed(seed);
}

std::string OtherTexts::Draw(std::size_t size) {
    constexpr std::string_view kLetters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    std::uniform_int_distribution<std::size_t> place(0, kLetters.size() - 1);
    std::string text(size, ' ');
    for (char& letter : text)
        letter = kLetters[place(random_)];
    return text;
}

void OtherTexts::Replace(char* text, std::size_t size) {
    if (size == 0) return;
    constexpr int kTries = 1000;
    std::string& other = known_[std::string(text, size)];
    const std::string_view same(text, size);
    for (int i = 0; other.empty() || (i < kTries && (given_.contains(other) || other == same)); ++i)
        other = Draw(size);
    given_.insert(other);
    std::memcpy(text, other.data(), size);
}

std::vector<std::uint8_t> Anonymised(const std::string& path, TapeProgress progress) {
    const TapeFile tape = LoadTape(path, std::move(progress));
    const Words words = Copy(tape).Take();
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(tape.bytes));
    std::memcpy(bytes.data(), words.data(), bytes.size());
    return bytes;
}

}  // namespace recorder
