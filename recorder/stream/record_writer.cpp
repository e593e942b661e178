#include "recorder/stream/record_writer.h"

#include <cstring>
#include <string>

namespace recorder {
namespace {

constexpr std::uint64_t kFactor = 0x9e37'79b9'7f4a'7c15;  // 2^64 over the golden ratio

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
    return std::rotl(hash ^ word, 29) * kFactor;
}

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

void RecordWriter::Begin(const RecordHead& head) {
    words_.resize(kHeadWords);
    std::memcpy(words_.data(), &head, sizeof head);
}

void RecordWriter::Words(const void* bytes, std::size_t count) {
    const std::size_t place = words_.size();
    words_.resize(place + count);
    std::memcpy(&words_[place], bytes, count * 8);
}

void RecordWriter::Put(std::string_view text) {
    const std::size_t place = words_.size() + 1;
    Word(text.size());
    words_.resize(place + (text.size() + 7) / 8);
    if (!text.empty()) std::memcpy(&words_[place], text.data(), text.size());
}

void RecordWriter::Put(const std::pair<double, double>& value) {
    Put(value.first);
    Put(value.second);
}

void RecordWriter::Put(const std::array<double, 3>& value) {
    Words(value.data(), value.size());
}

void RecordWriter::Put(const TVL::CMatrix4& matrix) {
    Words(matrix.rows, 16);
}

void RecordWriter::Put(const std::vector<ObjectId>& objects) {
    Word(objects.size());
    if (!objects.empty()) Words(objects.data(), objects.size());
}

// A tree can be deeper than the stack.
void RecordWriter::Put(const XMLNode& tree) {
    const std::size_t place = words_.size();
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
    words_[place] = (words_.size() - place - 1) * 8;
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

Record RecordWriter::End() {
    RecordHead head;
    std::memcpy(static_cast<void*>(&head), words_.data(), sizeof head);
    head.size = static_cast<std::uint32_t>(words_.size() * 8);
    std::memcpy(words_.data(), &head, sizeof head);
    head.checksum = ChecksumOf(words_);
    std::memcpy(words_.data(), &head, sizeof head);
    return {head, std::span(words_).subspan(kHeadWords)};
}

MeshId IdOf(const TVL::CMesh& mesh) {
    std::uint64_t hash = 0;
    TakeApart(mesh, [&](std::uint64_t word) { hash = Mix(hash, word); });
    return hash ^ hash >> 32;
}

std::uint32_t ChecksumOf(std::span<const std::uint64_t> words) {
    std::uint64_t hash = static_cast<std::uint32_t>(words.front());
    for (const std::uint64_t word : words.subspan(1))
        hash = Mix(hash, word);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace recorder
