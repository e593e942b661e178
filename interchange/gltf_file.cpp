#include "interchange/gltf_file.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "interchange/flaws.h"
#include "interchange/gltf_scene.h"
#include "tvl/base64_buffer.h"

namespace interchange {
namespace {

using Json = nlohmann::ordered_json;

// A file tells sizes in 32 bits, and its numbers lie in it as they do here.
constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();
static_assert(std::endian::native == std::endian::little);

std::string TooLarge(const Take& take) {
    return "with \"" + take.name + "\" the file would be larger than the 4 GiB that glTF has";
}

std::string TextOf(const Json& json) {
    constexpr int kOneLine = -1;
    return json.dump(kOneLine, ' ', false, Json::error_handler_t::replace);
}

// In single precision; none if two frames would fall together then, or lie before 0.
std::vector<float> TimesFrom(double start, const Take& take) {
    std::vector<float> times(take.frameCount);
    for (std::size_t frame = 0; frame < times.size(); ++frame)
        times[frame] = Narrowed(start + (take.Seconds(frame) - take.startSeconds));
    const bool isRising = std::ranges::adjacent_find(times, std::greater_equal()) == times.end();
    return isRising && times.front() >= 0 ? times : std::vector<float>();
}

class TakeReader {
  public:
    TakeReader(const FrameDone& done, std::string& error) : done_(done), error_(error) {}

    // False if it was given up, or there is an error.
    bool Read(const MovingTake& moving, ReadMotion& read, Loss& loss) {
        const Take& take = *moving.take;
        read.take = &take;
        if (take.frameCount > bytesLeft_ / sizeof(float)) return Fail(TooLarge(take));
        bytesLeft_ -= take.frameCount * sizeof(float);
        read.times = TimesFrom(take.startSeconds, take);
        const bool isInItsTime = !read.times.empty();
        if (!isInItsTime) read.times = TimesFrom(0, take);
        if (read.times.empty())
            return Fail("\"" + take.name + "\" has more frames than glTF has times for");
        LocalMotion motion(take, bytesLeft_);
        if (!ReadFrames(moving, motion)) return false;
        bytesLeft_ -= motion.keyBytes;
        read.nodes = std::move(motion.nodes);
        loss = motion.TellLoss();
        if (!read.Moves())
            loss.words.emplace_back("an animation, since nothing moves");
        else if (!isInItsTime)
            loss.words.push_back(LostStart(take));
        return true;
    }

  private:
    bool ReadFrames(const MovingTake& moving, LocalMotion& motion) {
        std::vector<TVL::CMatrix4> world(moving.take->nodes.size(), TVL::CMatrix4::Identity());
        for (std::size_t frame = 0; frame < moving.take->frameCount; ++frame) {
            moving.poses->At(moving.take->Seconds(frame), world);
            if (!motion.Add(world)) return Fail(TooLarge(*moving.take));
            if (!done_()) return false;
        }
        return true;
    }

    bool Fail(std::string why) {
        error_ = std::move(why);
        return false;
    }

    const FrameDone& done_;
    std::string& error_;
    std::size_t bytesLeft_ = kMostBytes;
};

void WriteNumbers(std::ostream& out, std::initializer_list<std::size_t> numbers) {
    for (const std::size_t number : numbers) {
        const auto narrow = static_cast<std::uint32_t>(number);
        out.write(reinterpret_cast<const char*>(&narrow), sizeof narrow);
    }
}

// The file's head, and a chunk each for text and bytes. The result is empty, or why there is none.
std::string WriteBinary(GltfScene& scene, const Take* last, std::ostream& out) {
    constexpr std::size_t kFileHead = 12;
    constexpr std::size_t kChunkHead = 8;
    constexpr std::size_t kAligned = 4;
    const std::size_t byteCount = scene.byteCount;
    if (byteCount > 0) scene.json["buffers"].push_back({{"byteLength", byteCount}});
    std::string text = TextOf(scene.json);
    text.resize((text.size() + kAligned - 1) / kAligned * kAligned, ' ');
    const std::size_t size =
        kFileHead + kChunkHead + text.size() + (byteCount > 0 ? kChunkHead + byteCount : 0);
    if (size > kMostBytes) return TooLarge(*last);
    WriteNumbers(out, {0x46546C67, 2, size, text.size(), 0x4E4F534A});
    out << text;
    if (byteCount > 0) WriteNumbers(out, {byteCount, 0x004E4942});
    for (const std::string_view part : scene.bytes)
        out.write(part.data(), static_cast<std::streamsize>(part.size()));
    return {};
}

// Group by group, so that no memory holds all of the text.
void WriteBase64(const std::vector<std::string_view>& parts, std::ostream& out) {
    constexpr std::size_t kGroup = 3 << 18;  // a multiple of three, whose text needs no padding
    const auto write = [&](const std::string& group) {
        out << Base64Buffer(group.data(), static_cast<std::int32_t>(group.size())).ToText();
    };
    std::string group;
    for (std::string_view part : parts) {
        while (!part.empty()) {
            const std::string_view piece = part.substr(0, kGroup - group.size());
            part.remove_prefix(piece.size());
            group += piece;
            if (group.size() == kGroup) write(std::exchange(group, {}));
        }
    }
    write(group);
}

// The bytes stand in the text as the last of it.
void WriteText(GltfScene& scene, std::ostream& out) {
    const std::string_view behind = scene.byteCount > 0 ? "\"}]}" : "";
    if (scene.byteCount > 0)
        scene.json["buffers"] = {
            {{"byteLength", scene.byteCount}, {"uri", "data:application/octet-stream;base64,"}}};
    const std::string text = TextOf(scene.json);
    out << std::string_view(text).substr(0, text.size() - behind.size());
    WriteBase64(scene.bytes, out);
    out << behind;
}

}  // namespace

std::string WriteGltf(const std::vector<MovingTake>& takes, GltfForm form, std::ostream& out,
                      const FrameDone& done, std::vector<Loss>& losses) {
    losses.assign(takes.size(), {});
    std::string error;
    TakeReader reader(done, error);
    std::vector<ReadMotion> motions(takes.size());
    for (std::size_t take = 0; take < takes.size(); ++take)
        if (!reader.Read(takes[take], motions[take], losses[take])) return error;
    GltfScene scene(motions, losses);
    if (form == GltfForm::kBinary) return WriteBinary(scene, takes.back().take, out);
    WriteText(scene, out);
    return {};
}

}  // namespace interchange
