#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <sstream>

#include "recorder/watch/books.h"

namespace recorder::watching {
namespace {

constexpr double kTicksInASecond = 4800;

// A determinant so much smaller than the product of the rows' lengths is one of rows in a plane.
constexpr double kFlat = 1e-6;

// Lengths are told by the sixth power of their geometric mean, which takes no roots.
constexpr double Sixth(double length) {
    return length * length * length * length * length * length;
}
constexpr double kAlike = Sixth(1.05);
constexpr double kOther = Sixth(2.5);

bool IsAlike(double a, double b) {
    return a < b * kAlike && b < a * kAlike;
}

double Squared(const double* row) {
    return row[0] * row[0] + row[1] * row[1] + row[2] * row[2];
}

double RowsOf(const TVL::CMatrix4& matrix) {
    return Squared(matrix[0]) * Squared(matrix[1]) * Squared(matrix[2]);
}

double Spat(const TVL::CMatrix4& m) {
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

bool IsFinite(const TVL::CMatrix4& matrix) {
    double sum = 0;
    for (const auto& row : matrix.rows)
        sum += row[0] * 0 + row[1] * 0 + row[2] * 0;
    return sum == 0;
}

std::string Lengths(double written, double read) {
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%.6g long, and %.6g was read",
                  std::pow(written, 1 / 6.0), std::pow(read, 1 / 6.0));
    return text.data();
}

// Of a mesh's list of points: its length. False where a coordinate is not finite.
bool TakePoints(ValueReader& content, std::uint64_t& count) {
    double sum = 0;
    count = content.Word();
    for (std::uint64_t left = count; left > 0 && content.IsGood(); --left)
        for (const double coordinate : content.Vector())
            sum += coordinate * 0;
    return sum == 0;
}

// Of a list of indices: its length. False where one is not below `most`.
bool TakeIndices(ValueReader& content, std::uint64_t most, std::uint64_t& count) {
    bool isBelow = true;
    const auto indices = ListOf(content);
    count = indices.size();
    for (const std::uint64_t index : indices.first(count - count % 3))
        isBelow &= index < most;
    return isBelow;
}

void Note(std::unordered_set<MeshId>& meshes, MeshId mesh, bool isSo) {
    if (isSo) meshes.insert(mesh);
}

}  // namespace

// A mesh without texture vertices may have texture faces, as those of the adaptor have.
void TakeMesh(Books& books, ValueReader& content) {
    std::uint64_t vertices = 0;
    std::uint64_t textureVertices = 0;
    std::uint64_t faces = 0;
    std::uint64_t textureFaces = 0;
    const MeshId mesh = content.Word();
    const bool arePlaces = TakePoints(content, vertices);
    const bool isTexture = TakePoints(content, textureVertices);
    if (!content.IsGood()) return;
    const bool areFaces = TakeIndices(content, vertices, faces);
    const bool areTextureFaces = TakeIndices(content, textureVertices, textureFaces);
    Note(books.meshesNotFinite, mesh, !arePlaces || !isTexture);
    Note(books.meshesOutOfRange, mesh, !areFaces || (!areTextureFaces && textureVertices > 0));
    Note(books.meshesOfHalfFaces, mesh, faces % 3 != 0);
}

void CheckMesh(Books& books, const Place& place, std::string_view node, MeshId mesh) {
    if (books.meshesNotFinite.contains(mesh)) books.found.Add(Rule::kNotFinite, place, node);
    if (books.meshesOutOfRange.contains(mesh)) books.found.Add(Rule::kFaceOutOfRange, place, node);
    if (books.meshesOfHalfFaces.contains(mesh)) books.found.Add(Rule::kHalfFace, place, node);
}

void CheckTime(Books& books, const Place& place, std::string_view node, double seconds) {
    if (!std::isfinite(seconds)) books.found.Add(Rule::kTimeNotFinite, place, node);
}

void CheckFinite(Books& books, const Place& place, std::string_view node, double number) {
    if (!std::isfinite(number)) books.found.Add(Rule::kNotFinite, place, node);
}

// In the order in which the host's own is reckoned.
std::int64_t TickOf(const Books& books, double seconds) {
    const double tick = kTicksInASecond / books.frameRate * (books.frameRate * seconds);
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return std::isnan(tick) ? 0 : static_cast<std::int64_t>(std::clamp(tick, -kMost, kMost));
}

bool IsGoodTransform(Books& books, const Place& place, const NodeMemory& node,
                     const TVL::CMatrix4& transform) {
    if (!IsFinite(transform)) {
        books.found.Add(Rule::kNotFinite, place, node.name);
        return false;
    }
    const double spat = Spat(transform);
    if (spat * spat > kFlat * kFlat * RowsOf(transform)) return true;
    books.found.Add(Rule::kSingular, place, node.name);
    return false;
}

// What is forgotten, done twice or upside down is the factor between host units and metres: rows
// are then as long as 1, as the square of what was read, or as the inverse of that. A node that is
// scaled otherwise is as its Core wants it.
void CheckRows(Books& books, const Place& place, NodeMemory& node, const TVL::CMatrix4& world) {
    const double read = node.rows > 0 ? node.rows : books.rows;
    const double written = RowsOf(world);
    const bool isOther = written > read * kOther || read > written * kOther;
    const bool isByUnit =
        IsAlike(written, 1) || IsAlike(written, read * read) || IsAlike(written * read, 1);
    if (read > 0 && isOther && isByUnit)
        books.found.Add(Rule::kUnitFactor, place, node.name,
                        [=] { return Lengths(written, read); });
    else
        node.rows = written;
}

void NoteRows(Books& books, NodeMemory& node, const TVL::CMatrix4& world) {
    node.rows = RowsOf(world);
    if (node.rows > 0) books.rows = node.rows;
}

// What is as the host made it has rows as long as one of its units is in metres.
void TakeSettings(Books& books, const std::string& about) {
    constexpr auto kMetres = std::to_array({0.0254, 0.3048, 1609.344, 0.001, 0.01, 1.0, 1000.0});
    std::istringstream text(about);
    text.imbue(std::locale::classic());
    double frameRate = 0;
    double ticksPerFrame = 0;
    std::size_t unit = 0;
    double count = 0;
    text >> frameRate >> ticksPerFrame >> unit >> count;
    if (!text || unit >= kMetres.size() || !(count > 0)) return;
    books.rows = Sixth(count * kMetres[unit]);
}

}  // namespace recorder::watching
