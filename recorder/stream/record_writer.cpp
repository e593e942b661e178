#include "recorder/stream/record_writer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>

namespace recorder {
namespace {

std::uint64_t Bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

std::uint64_t Bits(int value) {
    return static_cast<std::uint64_t>(std::int64_t{value});
}

// Gives each list of a mesh as its count and its numbers, word by word.
template <class Take>
void TakeApart(const TVL::CMesh& mesh, const Take& take) {
    const auto takeAll = [&](const auto& list) {
        take(std::uint64_t{list.size()});
        for (const auto& entry : list)
            take(Bits(entry));
    };
    const auto takePoints = [&](const auto& points) {
        take(std::uint64_t{points.size()});
        for (const auto& point : points)
            for (const double coordinate : point)
                take(Bits(coordinate));
    };
    takePoints(mesh.vertices);
    takePoints(mesh.textureVertices);
    takeAll(mesh.faces);
    takeAll(mesh.textureFaces);
}

}  // namespace

void RecordWriter::Grow(std::size_t count) {
    constexpr std::size_t kLeast = 512;
    const std::size_t size = Size();
    const std::size_t most = std::max(kLeast, 2 * size + count);
    auto words = std::make_unique_for_overwrite<std::uint64_t[]>(most);
    if (size > 0) std::memcpy(words.get(), words_.get(), size * 8);
    words_ = std::move(words);
    at_ = words_.get() + size;
    end_ = words_.get() + most;
}

void RecordWriter::Put(std::string_view text) {
    const std::size_t count = (text.size() + 7) / 8;
    std::uint64_t* const words = Room(1 + count);
    words[0] = text.size();
    if (count == 0) return;
    words[count] = 0;
    std::memcpy(words + 1, text.data(), text.size());
}

void RecordWriter::Put(const std::pair<double, double>& value) {
    Put(value.first);
    Put(value.second);
}

void RecordWriter::Put(const std::vector<ObjectId>& objects) {
    Word(objects.size());
    if (objects.empty()) return;
    std::memcpy(Room(objects.size()), objects.data(), objects.size() * 8);
}

// A tree can be deeper than the stack.
void RecordWriter::Put(const XMLNode& tree) {
    const std::size_t place = Size();
    Word(0);
    std::vector<const XMLNode*> rest{&tree};
    while (!rest.empty()) {
        const XMLNode& node = *rest.back();
        rest.pop_back();
        Put(node.kind);
        Put(std::string_view(node.name));
        Word(node.attributes.size());
        for (const auto& [name, value] : node.attributes) {
            Put(std::string_view(name));
            Put(std::string_view(value));
        }
        const std::size_t before = rest.size();
        for (auto child = node.children.rbegin(); child != node.children.rend(); ++child)
            if (*child) rest.push_back(child->get());
        Word(rest.size() - before);
    }
    words_[place] = (Size() - place - 1) * 8;
}

void RecordWriter::Put(const ObjectFacts& facts) {
    Put(facts.of);
    Put(facts.name);
    Put(facts.hostName);
    Put(facts.seconds);
    Put(facts.isSnapshot);
}

void RecordWriter::Put(const ExtensionValue& value) {
    Word(static_cast<unsigned char>(value.letter));
    if (value.letter == 't') Put(*value.tree);
    if (value.letter == 'i' || value.letter == 'o') Word(value.word);
}

void RecordWriter::PutMeshContent(MeshId id, const TVL::CMesh& mesh) {
    Word(id);
    TakeApart(mesh, [this](std::uint64_t word) { Word(word); });
}

// What was just stored is read at once in the size in which it was stored alone, of which the
// compiler knows nothing.
Record RecordWriter::End() {
    const std::span<std::uint64_t> words = Written();
    Record record{.head = {}, .values = words.subspan(kHeadWords)};
    record.head.size = static_cast<std::uint32_t>(words.size_bytes());
    words[0] = record.head.size;
    record.head.checksum = ChecksumOf(words);
    words[0] |= std::uint64_t{record.head.checksum} << 32;
    const auto alone = [](std::uint64_t& word) {
        return std::atomic_ref(word).load(std::memory_order_relaxed);
    };
    record.head.call = alone(words[1]);
    record.head.object = alone(words[2]);
    record.head.milliseconds = static_cast<std::uint32_t>(words[3]);
    record.head.kind = static_cast<RecordKind>(words[3] >> 32);
    record.head.thread = static_cast<std::uint8_t>(words[3] >> 40);
    record.head.nesting = static_cast<std::uint8_t>(words[3] >> 48);
    record.head.operation = static_cast<Operation>(words[3] >> 56);
    return record;
}

MeshId IdOf(const TVL::CMesh& mesh) {
    std::uint64_t hash = 0;
    TakeApart(mesh, [&](std::uint64_t word) { hash = Mix(hash, word); });
    return hash ^ hash >> 32;
}

// The compiler keeps four sums in registers where they have a name each.
std::uint32_t ChecksumOf(std::span<const std::uint64_t> words) {
    const std::uint64_t* at = words.data();
    const std::uint64_t* const end = at + words.size();
    std::uint64_t a = Mix(0, static_cast<std::uint32_t>(at[0]));
    std::uint64_t b = Mix(0, at[1]);
    std::uint64_t c = Mix(0, at[2]);
    std::uint64_t d = Mix(0, at[3]);
    for (at += 4; end - at >= 4; at += 4) {
        a = Mix(a, at[0]);
        b = Mix(b, at[1]);
        c = Mix(c, at[2]);
        d = Mix(d, at[3]);
    }
    if (at != end) a = Mix(a, *at++);
    if (at != end) b = Mix(b, *at++);
    if (at != end) c = Mix(c, *at++);
    const std::uint64_t hash = Mix(Mix(0, a ^ std::rotl(b, 16)), c ^ std::rotl(d, 32));
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace recorder
