#include "player/replay/values_text.h"

#include <array>
#include <charconv>

#include "recorder/stream/record_reader.h"

namespace player {
namespace {

using recorder::ObjectKind;
using recorder::ValueReader;

constexpr std::size_t kLongest = 160;

constexpr std::array<std::string_view, 16> kKinds = {"none",
                                                     "adaptor",
                                                     "Core",
                                                     "node",
                                                     "snapshot",
                                                     "helper snapshot",
                                                     "lens snapshot",
                                                     "mesh snapshot",
                                                     "shape snapshot",
                                                     "owner",
                                                     "listener",
                                                     "chunk",
                                                     "message node of the Core's",
                                                     "message node of the adaptor's",
                                                     "log",
                                                     "registry"};

std::string Cut(std::string text) {
    if (text.size() <= kLongest) return text;
    return text.substr(0, kLongest) + "...";
}

std::string Number(double number) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string Object(recorder::ObjectId id) {
    const auto kind = static_cast<std::size_t>(recorder::KindOf(id));
    if (id == 0 || kind >= kKinds.size()) return "none";
    return std::string(kKinds[kind]) + ' ' + std::to_string(recorder::NumberOf(id));
}

std::string Numbers(ValueReader& values, int count) {
    std::string text = "(";
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : ", ") + Number(values.Number());
    return text + ')';
}

std::string One(char letter, ValueReader& values) {
    switch (letter) {
        case 'b':
            return values.Truth() ? "true" : "false";
        case 'i':
            return std::to_string(values.Whole());
        case 'd':
            return Number(values.Number());
        case 's':
            return '"' + std::string(values.Text()) + '"';
        case 'p':
            return Numbers(values, 2);
        case 'v':
            return Numbers(values, 3);
        case 'm':
            return Numbers(values, 16);
        case 'g':
            return "mesh " + std::to_string(values.Word());
        case 't':
            return values.Tree().Write();
        case 'o':
            return Object(values.Object());
        case 'O': {
            std::string text = "[";
            for (const recorder::ObjectId id : values.Objects())
                text += (text.size() == 1 ? "" : ", ") + Object(id);
            return text + ']';
        }
        case 'x': {
            const char tag = values.Letter();
            if (tag == 'i') return std::to_string(values.Word());
            return tag == 0 ? "nothing" : One(tag, values);
        }
        default:
            values.Skip(letter);
            return "a window";
    }
}

}  // namespace

std::string TextOfValues(std::string_view letters, std::span<const std::uint64_t> values) {
    ValueReader reader(values);
    std::string text;
    for (const char letter : letters)
        text += (text.empty() ? "" : ", ") + Cut(One(letter, reader));
    return text;
}

}  // namespace player
