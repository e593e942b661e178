#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include "headless/comparison/comparison.h"
#include "headless/scene_file/file_errors.h"

namespace headless {
namespace {

template <class Sequence>
std::size_t CommonBegin(const Sequence& first, const Sequence& second) {
    const auto apart =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
    return static_cast<std::size_t>(apart - first.begin());
}

// Without the NUL that a text is closed with. Nothing for what is no text.
std::optional<std::string_view> AsText(std::span<const std::byte> bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!text.empty() && text.back() == '\0') text.remove_suffix(1);
    const bool isText = std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) >= ' ' || c == '\n' || c == '\r' || c == '\t';
    });
    return isText ? std::optional(text) : std::nullopt;
}

std::string_view LineAt(std::string_view text, std::size_t begin) {
    return text.substr(begin, text.find('\n', begin) - begin);
}

std::string LineDifference(std::string_view first, std::string_view second) {
    const std::string_view same = first.substr(0, CommonBegin(first, second));
    const auto line = 1 + std::count(same.begin(), same.end(), '\n');
    const std::size_t begin = same.rfind('\n') + 1;  // npos, if there is none, becomes 0
    return "line " + std::to_string(line) + ": " +
           TextDifference(LineAt(first, begin), LineAt(second, begin));
}

std::string Seen(TimeValue t) {
    return "tick " + std::to_string(t);
}

// Where one side has a key that the other does not have, or has otherwise.
std::optional<TimeValue> FirstDifferingTick(const StoredKeys& first, const StoredKeys& second) {
    const auto& a = first.keys;
    const auto& b = second.keys;
    const auto [left, right] = std::mismatch(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const auto& x, const auto& y) { return x.time == y.time && x.hash == y.hash; });
    if (left == a.end() && right == b.end()) return {};
    if (left == a.end()) return right->time;
    return right == b.end() ? left->time : std::min(left->time, right->time);
}

double Distance(const Point3& a, const Point3& b) {
    return std::hypot(static_cast<double>(a.x) - b.x, static_cast<double>(a.y) - b.y,
                      static_cast<double>(a.z) - b.z);
}

struct Furthest {
    double distance = 0;
    TimeValue time = 0;
};

// Over the times at which both have a key. What is no number counts as apart without end.
Furthest FurthestApart(const StoredKeys& first, const StoredKeys& second) {
    Furthest furthest;
    auto b = second.keys.begin();
    for (const StoredKey& key : first.keys) {
        while (b != second.keys.end() && b->time < key.time)
            ++b;
        if (b == second.keys.end() || b->time != key.time || b->hash == key.hash) continue;
        double distance = Distance(key.value, b->value);
        if (std::isnan(distance)) distance = HUGE_VAL;
        if (distance > furthest.distance) furthest = {distance, key.time};
    }
    return furthest;
}

std::string Number(double number) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.6g", number);
    return text.data();
}

}  // namespace

std::string NameOf(const StoredNode& node) {
    return "node " + Quoted(node.name) + " (" + std::to_string(node.handle) + ")";
}

std::string NameOf(const StoredClass& type) {
    std::array<char, 40> ids;
    std::snprintf(ids.data(), ids.size(), " (%X, %X:%X)", type.superClass, type.id.partA,
                  type.id.partB);
    return Quoted(type.name) + ids.data();
}

std::string TextDifference(std::string_view first, std::string_view second) {
    if (std::max(first.size(), second.size()) <= kQuotedBytes)
        return Quoted(first) + " and " + Quoted(second);
    const std::size_t apart = CommonBegin(first, second);
    const std::size_t shown = apart - std::min(apart, kQuotedBytes / 4);
    return "from byte " + std::to_string(apart) + " on: " + Quoted(first.substr(shown)) + " and " +
           Quoted(second.substr(shown));
}

std::string ContentDifference(std::span<const std::byte> first, std::span<const std::byte> second) {
    const auto text = AsText(first);
    const auto otherText = AsText(second);
    if (text && otherText && *text != *otherText) return LineDifference(*text, *otherText);
    return std::to_string(first.size()) + " and " + std::to_string(second.size()) +
           " bytes, which differ from byte " + std::to_string(CommonBegin(first, second)) + " on";
}

std::string KeyDifference(const StoredKeys& first, const StoredKeys& second) {
    const auto tick = FirstDifferingTick(first, second);
    if (!tick) return "";
    std::string words = std::to_string(first.keys.size()) + " and " +
                        std::to_string(second.keys.size()) + " keys, which differ from " +
                        Seen(*tick) + " on";
    const Furthest furthest = FurthestApart(first, second);
    if (furthest.distance > 0)
        words += "; furthest apart at " + Seen(furthest.time) + ", by " +
                 Number(furthest.distance) + (first.isTransform ? " host units" : "");
    return words;
}

}  // namespace headless
