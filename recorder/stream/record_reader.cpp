#include "recorder/stream/record_reader.h"

#include <cstring>
#include <memory>

#include "recorder/stream/record_writer.h"

namespace recorder {
namespace {

constexpr std::size_t kLeastTree = 4;  // words of an element: its kind and three counts

}  // namespace

void ValueReader::Fail() {
    isGood_ = false;
    rest_ = {};
}

std::span<const std::uint64_t> ValueReader::Take(std::size_t count) {
    if (count > rest_.size()) {
        Fail();
        return {};
    }
    const auto taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
}

std::uint64_t ValueReader::Word() {
    const auto word = Take(1);
    return word.empty() ? 0 : word.front();
}

// No more entries than there is room for.
std::size_t ValueReader::Count(std::size_t wordsOfEach) {
    const std::uint64_t count = Word();
    if (count <= rest_.size() / wordsOfEach) return count;
    Fail();
    return 0;
}

std::string_view ValueReader::Text() {
    const std::uint64_t size = Word();
    if (size > rest_.size() * 8) {
        Fail();
        return {};
    }
    const auto words = Take((size + 7) / 8);
    return {reinterpret_cast<const char*>(words.data()), size};
}

std::pair<double, double> ValueReader::Pair() {
    const double first = Number();
    return {first, Number()};
}

std::array<double, 3> ValueReader::Vector() {
    std::array<double, 3> vector{};
    for (double& coordinate : vector)
        coordinate = Number();
    return vector;
}

TVL::CMatrix4 ValueReader::Matrix() {
    TVL::CMatrix4 matrix = TVL::CMatrix4::Zero();
    const auto words = Take(16);
    if (!words.empty()) std::memcpy(matrix.rows, words.data(), sizeof matrix.rows);
    return matrix;
}

std::vector<ObjectId> ValueReader::Objects() {
    const auto ids = Take(Count(1));
    return {ids.begin(), ids.end()};
}

// Words of a tree, all of which are there.
std::size_t ValueReader::TreeSize() {
    const std::uint64_t bytes = Word();
    if (bytes % 8 == 0 && bytes / 8 <= rest_.size()) return bytes / 8;
    Fail();
    return 0;
}

XMLNode ValueReader::Tree() {
    struct Open {
        XMLNode* node;
        std::size_t missing;  // children
    };
    XMLNode root;
    ValueReader words(Take(TreeSize()));
    std::vector<Open> open;
    XMLNode* node = &root;
    do {
        node->kind = words.Whole();
        node->name = words.Text();
        for (std::size_t left = words.Count(2); left > 0; --left) {
            const std::string_view name = words.Text();
            node->attributes.emplace(name, words.Text());
        }
        open.push_back({node, words.Count(kLeastTree)});
        while (!open.empty() && open.back().missing == 0)
            open.pop_back();
        if (open.empty()) break;
        --open.back().missing;
        XMLNode& parent = *open.back().node;
        node = parent.children.emplace_back(std::make_unique<XMLNode>()).get();
    } while (words.IsGood());
    if (!words.IsGood() || !words.IsAtEnd()) Fail();
    return root;
}

ObjectFacts ValueReader::Facts() {
    ObjectFacts facts;
    facts.of = Object();
    facts.name = Text();
    facts.hostName = Text();
    facts.seconds = Number();
    facts.isSnapshot = Truth();
    return facts;
}

TVL::CMesh ValueReader::MeshContent() {
    TVL::CMesh mesh;
    const auto readPoints = [this](auto& points) {
        points.resize(Count(3));
        for (auto& point : points)
            point = Vector();
    };
    const auto readIndices = [this](auto& indices) {
        indices.resize(Count(1));
        for (int& index : indices)
            index = Whole();
    };
    readPoints(mesh.vertices);
    readPoints(mesh.textureVertices);
    readIndices(mesh.faces);
    readIndices(mesh.textureFaces);
    return mesh;
}

std::span<const std::uint64_t> ValueReader::Skip(char letter) {
    const auto whole = rest_;
    switch (letter) {
        case 'p':
            Take(2);
            break;
        case 'v':
            Take(3);
            break;
        case 'm':
            Take(16);
            break;
        case 's':
            Text();
            break;
        case 'O':
            Take(Count(1));
            break;
        case 't':
            Take(TreeSize());
            break;
        case 'x': {
            const char tag = Letter();
            if (tag == 't' || tag == 'o' || tag == 'i')
                Skip(tag);
            else if (tag != 0)
                Fail();
            break;
        }
        default:
            Take(1);
            break;  // b i d o g w
    }
    return whole.first(whole.size() - rest_.size());
}

std::string InSeconds(std::uint32_t milliseconds) {
    const std::string rest = std::to_string(milliseconds % 1000);
    return std::to_string(milliseconds / 1000) + '.' + std::string(3 - rest.size(), '0') + rest;
}

std::string_view LettersOf(const RecordHead& head) {
    switch (head.kind) {
        case RecordKind::kSession:
            return "sisss";
        case RecordKind::kCall:
            return RowOf(head.operation).said;
        case RecordKind::kAnswer:
            return RowOf(head.operation).answered;
        case RecordKind::kThrown:
            return "s";
        case RecordKind::kObject:
            return "ossdb";
        case RecordKind::kNote:
            return "ss";
        case RecordKind::kMesh:
            break;
    }
    return {};
}

bool AreValuesGood(const Record& record) {
    const RecordKind kind = record.head.kind;
    if (kind < RecordKind::kSession || kind > RecordKind::kNote) return false;
    if (static_cast<std::size_t>(record.head.operation) >= kOperations.size()) return false;
    ValueReader values(record);
    if (kind == RecordKind::kMesh) {
        values.Word();
        values.MeshContent();
    }
    // A tree is good if it can be read.
    for (const char letter : LettersOf(record.head)) {
        const auto value = values.Skip(letter);
        const bool isTagged = letter == 'x' && !value.empty() && value.front() == 't';
        if (letter != 't' && !isTagged) continue;
        ValueReader tree(isTagged ? value.subspan(1) : value);
        tree.Tree();
        if (!tree.IsGood()) return false;
    }
    return values.IsGood() && values.IsAtEnd();
}

std::optional<Record> ReadRecord(std::span<const std::uint64_t> words, std::uint32_t salt) {
    if (words.size() < kHeadWords) return std::nullopt;
    RecordHead head;
    std::memcpy(static_cast<void*>(&head), words.data(), sizeof head);
    head.checksum ^= salt;
    const std::size_t size = head.size / 8;
    if (head.size % 8 != 0 || size < kHeadWords || size > words.size()) return std::nullopt;
    if (ChecksumOf(words.first(size)) != head.checksum) return std::nullopt;
    return Record{head, words.first(size).subspan(kHeadWords)};
}

}  // namespace recorder
