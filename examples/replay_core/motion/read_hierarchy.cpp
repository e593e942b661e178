#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "replay_core/motion/capture_halves.h"

namespace replay {
namespace {

struct ChannelName {
    std::string_view name;
    Channel channel;
};

constexpr std::array kChannelNames{
    ChannelName{"Xposition", Channel::kXposition}, ChannelName{"Yposition", Channel::kYposition},
    ChannelName{"Zposition", Channel::kZposition}, ChannelName{"Xrotation", Channel::kXrotation},
    ChannelName{"Yrotation", Channel::kYrotation}, ChannelName{"Zrotation", Channel::kZrotation},
};

// Three places and three turns. The turns may repeat an axis, the places may not.
constexpr std::size_t kMostChannels = 6;

bool IsPosition(Channel channel) {
    return channel <= Channel::kZposition;
}

// Reads one element after the other and keeps the joint that is open, whose parents are the others
// that are: however deep a file nests, nothing here recurses.
class HierarchyReader {
  public:
    HierarchyReader(CaptureText& text, Motion& motion) : text_(text), motion_(motion) {}

    std::optional<ReadError> Read() {
        if (auto error = text_.Expect("HIERARCHY")) return error;
        while (!ended_) {
            if (auto error = open_ == kNoJoint ? ReadBetweenRoots() : ReadInJoint()) return error;
        }
        if (motion_.channelCount == 0) return text_.Error("no joint has a channel");
        return std::nullopt;
    }

  private:
    std::optional<ReadError> ReadBetweenRoots() {
        const std::string_view word = text_.NextWord();
        if (IsKeyword(word, "ROOT")) return OpenJoint();
        if (!IsKeyword(word, "MOTION") || motion_.joints.empty()) {
            return text_.Unexpected(motion_.joints.empty() ? "ROOT" : "ROOT or MOTION", word);
        }
        ended_ = true;
        return std::nullopt;
    }

    std::optional<ReadError> ReadInJoint() {
        const std::string_view word = text_.NextWord();
        if (IsKeyword(word, "OFFSET")) return ReadOffset();
        if (IsKeyword(word, "CHANNELS")) return ReadChannels();
        if (IsKeyword(word, "JOINT")) return OpenJoint();
        if (IsKeyword(word, "End")) return ReadEndSite();
        if (IsKeyword(word, "}")) return CloseJoint();
        return text_.Unexpected("OFFSET, CHANNELS, JOINT, End Site or } of joint " + OpenName(),
                                word);
    }

    std::optional<ReadError> OpenJoint() {
        Joint joint;
        joint.name = text_.NextName();
        joint.parent = open_;
        if (joint.name.empty()) return text_.Error("the joint has no name");
        open_ = motion_.joints.size();
        motion_.joints.push_back(std::move(joint));
        hasOffset_.push_back(false);
        return text_.Expect("{");
    }

    std::optional<ReadError> CloseJoint() {
        if (!hasOffset_[open_]) return text_.Error("joint " + OpenName() + " has no OFFSET");
        open_ = motion_.joints[open_].parent;
        return std::nullopt;
    }

    std::optional<ReadError> ReadOffset() {
        if (hasOffset_[open_]) return text_.Error("joint " + OpenName() + " has two OFFSETs");
        hasOffset_[open_] = true;
        return text_.ExpectPoint(motion_.joints[open_].offset);
    }

    std::optional<ReadError> ReadChannels() {
        std::vector<Channel>& channels = motion_.joints[open_].channels;
        if (!channels.empty()) return text_.Error("joint " + OpenName() + " has two CHANNELS");
        std::size_t count = 0;
        if (auto error = text_.ExpectCount(count)) return error;
        if (count > kMostChannels) {
            return text_.Error("a joint has at most " + std::to_string(kMostChannels) +
                               " channels, " + std::to_string(count) + " are announced");
        }
        motion_.joints[open_].firstChannel = motion_.channelCount;
        motion_.channelCount += count;
        channels.reserve(count);
        while (channels.size() < count) {
            if (auto error = ReadChannel(channels)) return error;
        }
        return std::nullopt;
    }

    std::optional<ReadError> ReadChannel(std::vector<Channel>& channels) {
        const std::string_view word = text_.NextWord();
        const auto* const found = std::ranges::find_if(
            kChannelNames,
            [word](const ChannelName& known) { return IsKeyword(word, known.name); });
        if (found == kChannelNames.end()) {
            return text_.Unexpected("a channel such as Xposition or Zrotation", word);
        }
        if (IsPosition(found->channel) && std::ranges::count(channels, found->channel) > 0) {
            return text_.Error("channel " + Quoted(word) + " stands twice");
        }
        channels.push_back(found->channel);
        return std::nullopt;
    }

    std::optional<ReadError> ReadEndSite() {
        if (auto error = text_.Expect("Site")) return error;
        text_.NextName();  // some programs name the tip; nothing moves by that name
        EndSite site{open_, {}};
        if (auto error = text_.Expect("{")) return error;
        if (auto error = text_.Expect("OFFSET")) return error;
        if (auto error = text_.ExpectPoint(site.offset)) return error;
        motion_.endSites.push_back(site);
        return text_.Expect("}");
    }

    std::string OpenName() const { return Quoted(motion_.joints[open_].name); }

    CaptureText& text_;
    Motion& motion_;
    std::vector<bool> hasOffset_;  // for each joint
    std::size_t open_ = kNoJoint;  // the innermost joint that is not closed yet
    bool ended_ = false;           // MOTION was read
};

}  // namespace

std::optional<ReadError> ReadHierarchy(CaptureText& text, Motion& motion) {
    return HierarchyReader(text, motion).Read();
}

}  // namespace replay
