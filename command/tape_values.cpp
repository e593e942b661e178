#include "command/tape_values.h"

#include <array>
#include <charconv>

#include "command/output.h"

namespace headless {
namespace {

using recorder::ObjectId;
using recorder::ObjectNames;
using recorder::ValueReader;
using Json = nlohmann::ordered_json;

std::size_t ElementsOf(const XMLNode& root) {
    std::size_t count = 0;
    std::vector<const XMLNode*> rest{&root};
    while (!rest.empty()) {
        const XMLNode& node = *rest.back();
        rest.pop_back();
        if (node.kind == XMLNode::kElement) ++count;
        for (const auto& child : node.children)
            rest.push_back(child.get());
    }
    return count;
}

std::string TreeText(const XMLNode& tree) {
    const std::size_t count = ElementsOf(tree);
    return count == 0 ? "no tree" : '<' + InTable(tree.name) + "> of " + Counted(count, "element");
}

std::string ShortText(std::string_view text) {
    constexpr std::size_t kMost = 60;
    if (text.size() <= kMost) return Quoted(std::string(text));
    return Quoted(std::string(text.substr(0, kMost)) + "...") + " of " +
           Counted(text.size(), "byte");
}

template <class Numbers>
std::string RowText(const Numbers& numbers, std::size_t count) {
    std::string row;
    for (std::size_t i = 0; i < count; ++i)
        row += (i == 0 ? "" : " ") + Plain(numbers[i]);
    return row;
}

// Of a matrix that ends as all transforms do the last column is not told.
std::string MatrixText(const TVL::CMatrix4& matrix) {
    bool isTransform = true;
    for (std::size_t i = 0; i < 4; ++i)
        isTransform &= matrix.rows[i][3] == (i == 3 ? 1 : 0);
    std::string text;
    for (const auto& row : matrix.rows)
        text += (text.empty() ? "" : "; ") + RowText(row, isTransform ? 3 : 4);
    return '[' + text + ']';
}

std::string ObjectsText(const std::vector<ObjectId>& objects, const ObjectNames& names) {
    std::string text;
    for (const ObjectId object : objects)
        text += (text.empty() ? "" : ", ") + InTable(names.NameOf(object));
    return '{' + text + '}';
}

std::string ExtensionText(ValueReader& values, const ObjectNames& names) {
    const char letter = values.Letter();
    if (letter == 0) return "";
    return letter == 'i' ? std::to_string(static_cast<std::int64_t>(values.Word()))
                         : ValueText(values, letter, names);
}

Json ObjectJson(ObjectId object, const ObjectNames& names) {
    if (object == 0) return nullptr;
    return {{"object", ObjectNames::ByNumber(object)}, {"name", names.NameOf(object)}};
}

Json ExtensionJson(ValueReader& values, const ObjectNames& names) {
    const char letter = values.Letter();
    if (letter == 0) return nullptr;
    if (letter == 'i') return static_cast<std::int64_t>(values.Word());
    return ValueJson(values, letter, names);
}

}  // namespace

std::string MeshText(recorder::MeshId mesh) {
    constexpr int kHexadecimal = 16;
    std::array<char, 16> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), mesh, kHexadecimal);
    return "mesh " + std::string(text.data(), end.ptr);
}

std::string ValueText(ValueReader& values, char letter, const ObjectNames& names) {
    switch (letter) {
        case 'b':
            return values.Truth() ? "true" : "false";
        case 'i':
            return std::to_string(values.Whole());
        case 'd':
            return Plain(values.Number());
        case 's':
            return ShortText(values.Text());
        case 'p': {
            const auto [first, second] = values.Pair();
            return '(' + Plain(first) + ' ' + Plain(second) + ')';
        }
        case 'v':
            return '(' + RowText(values.Vector(), 3) + ')';
        case 'm':
            return MatrixText(values.Matrix());
        case 'g':
            return MeshText(values.Word());
        case 't':
            return TreeText(values.Tree());
        case 'o':
            return InTable(names.NameOf(values.Object()));
        case 'O':
            return ObjectsText(values.Objects(), names);
        case 'x':
            return ExtensionText(values, names);
        default:
            values.Word();
            return "window";
    }
}

Json ValueJson(ValueReader& values, char letter, const ObjectNames& names) {
    switch (letter) {
        case 'b':
            return values.Truth();
        case 'i':
            return values.Whole();
        case 'd':
            return values.Number();
        case 's':
            return std::string(values.Text());
        case 'p': {
            const auto [first, second] = values.Pair();
            return {first, second};
        }
        case 'v':
            return values.Vector();
        case 'm':
            return values.Matrix().rows;
        case 'g':
            return MeshText(values.Word());
        case 't':
            return values.Tree().Write();
        case 'o':
            return ObjectJson(values.Object(), names);
        case 'O': {
            Json list = Json::array();
            for (const ObjectId object : values.Objects())
                list.push_back(ObjectJson(object, names));
            return list;
        }
        case 'x':
            return ExtensionJson(values, names);
        default:
            return values.Word();
    }
}

}  // namespace headless
