#include "interchange/page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "tvl/base64_buffer.h"
#include "tvl/transform_parts.h"

namespace interchange {
namespace {

using TVL::CMatrix4;

constexpr std::string_view kPlaceForTakes = "<!-- takes -->";

// What the page decodes at once, in bytes.
constexpr std::size_t kChunkBytes = std::size_t{1} << 19;

// A part of a quaternion, or of an axis beside the longest of its node, in 16 bits.
constexpr double kOne = 32767;

// Axes that no quaternion tells of, beyond the rounding of a host's single precision.
constexpr double kBesideTurn = 1e-4;

// The page reads numbers as they lie in memory here.
static_assert(std::endian::native == std::endian::little);

template <class Number>
void Append(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

// What is no number counts as 0.
void AppendPart(std::string& bytes, double part) {
    const double inReach = std::isnan(part) ? 0 : std::clamp(part, -1.0, 1.0);
    Append(bytes, static_cast<std::int16_t>(std::lround(inReach * kOne)));
}

float InSinglePrecision(double number) {
    constexpr double kMost = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(number, -kMost, kMost));
}

double AxisLength(const CMatrix4& world, int axis) {
    return std::hypot(world[axis][0], world[axis][1], world[axis][2]);
}

bool IsTurn(const CMatrix4& world) {
    for (int row = 0; row < 3; ++row)
        if (!(std::abs(AxisLength(world, row) - 1) < kBesideTurn)) return false;
    return SkewOf(world) < kBesideTurn && TVL::Determinant(world) > 0;
}

// Where all nodes are at some frames that follow each other.
class Chunk {
  public:
    Chunk(std::size_t nodes, std::size_t frames) : nodes_(nodes), worlds_(nodes * frames) {}

    std::span<CMatrix4> Frame(std::size_t frame) {
        return std::span(worlds_).subspan(frame * nodes_, nodes_);
    }

    bool HasTurnsAlone() const { return std::ranges::all_of(worlds_, &IsTurn); }

    std::string Bytes(bool hasTurnsAlone) const {
        std::string bytes;
        const std::vector<float> longest = hasTurnsAlone ? std::vector<float>() : Longest();
        for (const float length : longest)
            Append(bytes, length);
        for (const CMatrix4& world : worlds_)
            for (int i = 0; i < 3; ++i)
                Append(bytes, InSinglePrecision(world[3][i]));
        for (std::size_t at = 0; at < worlds_.size(); ++at)
            if (hasTurnsAlone)
                AppendTurn(bytes, worlds_[at]);
            else
                AppendAxes(bytes, worlds_[at], double{longest[at % nodes_]});
        return bytes;
    }

  private:
    // The longest axis that each node has here.
    std::vector<float> Longest() const {
        std::vector<float> longest(nodes_);
        for (std::size_t at = 0; at < worlds_.size(); ++at)
            for (int row = 0; row < 3; ++row)
                longest[at % nodes_] =
                    std::max(longest[at % nodes_], InSinglePrecision(AxisLength(worlds_[at], row)));
        return longest;
    }

    static void AppendTurn(std::string& bytes, const CMatrix4& world) {
        for (const double part : TVL::PartsOf(world).rotation)
            AppendPart(bytes, part);
    }

    static void AppendAxes(std::string& bytes, const CMatrix4& world, double longest) {
        for (int row = 0; row < 3; ++row)
            for (int i = 0; i < 3; ++i)
                AppendPart(bytes, longest > 0 ? world[row][i] / longest : 0);
    }

    std::size_t nodes_;
    std::vector<CMatrix4> worlds_;
};

// The box around the places that the nodes of a take come to, as far as they are finite.
struct Box {
    std::array<double, 3> least{};
    std::array<double, 3> most{};
    bool isEmpty = true;

    void Add(const CMatrix4& world) {
        const double* const place = world[3];
        if (!std::all_of(place, place + 3, [](double at) { return std::isfinite(at); })) return;
        for (std::size_t i = 0; i < 3; ++i) {
            least[i] = isEmpty ? place[i] : std::min(least[i], place[i]);
            most[i] = isEmpty ? place[i] : std::max(most[i], place[i]);
        }
        isEmpty = false;
    }
};

std::string Base64(const std::string& bytes) {
    return Base64Buffer(bytes.data(), static_cast<std::int32_t>(bytes.size())).ToText();
}

class PageWriter {
  public:
    PageWriter(std::ostream& out, const FrameDone& done) : out_(out), done_(done) {}

    // False if it was given up.
    bool Write(const MovingTake& moving) {
        const Take& take = *moving.take;
        Box box;
        for (std::size_t first = 0; first < take.frameCount;) {
            const std::size_t frames = std::min(FramesInChunk(take), take.frameCount - first);
            if (!WriteFrames(moving, first, frames, box)) return false;
            first += frames;
        }
        WriteShapes(take);
        Tell(take, box);
        ++take_;
        return true;
    }

    // No text in it ends the element, or begins another.
    void WriteTold(const std::string& title) {
        const nlohmann::ordered_json told = {{"form", 1}, {"title", title}, {"takes", takes_}};
        constexpr int kOneLine = -1;
        std::string text =
            told.dump(kOneLine, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
        out_ << "<script type=\"application/json\" id=\"takes\">";
        for (const char c : text)
            c == '<' ? out_ << "\\u003c" : out_ << c;
        out_ << "</script>\n";
    }

  private:
    static std::size_t FramesInChunk(const Take& take) {
        constexpr std::size_t kBytes = 20;  // of a node at a frame
        return std::max<std::size_t>(
            kChunkBytes / kBytes / std::max<std::size_t>(take.nodes.size(), 1), 1);
    }

    // A browser reads on fastest over a comment, and lays out nothing of a template.
    void WriteElement(const std::string& attributes, const std::string& bytes) {
        out_ << "<template data-take=\"" << take_ << "\" " << attributes << "><!--" << Base64(bytes)
             << "--></template>\n";
    }

    bool WriteFrames(const MovingTake& moving, std::size_t first, std::size_t frames, Box& box) {
        const Take& take = *moving.take;
        Chunk chunk(take.nodes.size(), frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const std::span<CMatrix4> world = chunk.Frame(frame);
            moving.poses->At(take.Seconds(first + frame), world);
            for (std::size_t node = 0; node < world.size(); ++node)
                if (take.nodes[node].kind != NodeKind::kCamera) box.Add(world[node]);
            if (!done_()) return false;
        }
        const bool hasTurnsAlone = chunk.HasTurnsAlone();
        WriteElement("data-frames=\"" + std::to_string(frames) + "\" data-form=\"" +
                         (hasTurnsAlone ? "turns" : "axes") + '"',
                     chunk.Bytes(hasTurnsAlone));
        return true;
    }

    void WriteShapes(const Take& take) {
        std::string places, normals, colours;
        for (const TakeNode& node : take.nodes)
            for (const ShapeVertex& vertex : node.shape) {
                for (const float metres : vertex.place)
                    Append(places, metres);
                for (const float part : vertex.normal)
                    normals += static_cast<char>(std::lround(std::clamp(part, -1.0F, 1.0F) * 127));
                for (const float part : vertex.colour)
                    colours += static_cast<char>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255));
                normals += '\0';
                colours += '\xFF';
            }
        WriteElement("data-shapes", places + normals + colours);
    }

    void Tell(const Take& take, const Box& box) {
        constexpr const char* kKinds[] = {"joint", "camera", "other"};
        nlohmann::ordered_json nodes = nlohmann::ordered_json::array();
        for (const TakeNode& node : take.nodes)
            nodes.push_back(
                {{"name", node.name},
                 {"parent", node.parent == kNoNode ? -1 : static_cast<std::int64_t>(node.parent)},
                 {"kind", kKinds[static_cast<std::size_t>(node.kind)]},
                 {"vertices", node.shape.size()}});
        takes_.push_back({{"name", take.name},
                          {"startSeconds", take.startSeconds},
                          {"frameSeconds", take.frameSeconds},
                          {"frames", take.frameCount},
                          {"least", box.least},
                          {"most", box.most},
                          {"nodes", nodes}});
    }

    std::ostream& out_;
    const FrameDone& done_;
    std::size_t take_ = 0;
    nlohmann::ordered_json takes_ = nlohmann::ordered_json::array();
};

}  // namespace

std::string WritePage(const std::vector<MovingTake>& takes, const std::string& title,
                      const std::string& viewer, std::ostream& out, const FrameDone& done) {
    const std::size_t place = viewer.find(kPlaceForTakes);
    if (place == std::string::npos) return "it has no place for takes";
    out << std::string_view(viewer).substr(0, place);
    PageWriter page(out, done);
    for (const MovingTake& take : takes)
        if (!page.Write(take)) return {};
    page.WriteTold(title);
    out << std::string_view(viewer).substr(place + kPlaceForTakes.size());
    return {};
}

}  // namespace interchange
