#include "tests/interchange/gltf/read_back.h"

#include <algorithm>
#include <stdexcept>

#include "platform/narrow_path.h"
#include "platform/testing.h"

namespace {

// A channel with one key stands for the same value at all times.
template <class Key>
auto At(const Key* keys, unsigned count, std::size_t key) {
    return keys[std::min<std::size_t>(key, count - 1)].mValue;
}

}  // namespace

ReadBack::ReadBack(const std::string& file) {
    const aiScene* const scene = importer_.ReadFile(file, 0);
    if (!scene) throw std::runtime_error(importer_.GetErrorString());
    for (unsigned i = 0; i < scene->mNumAnimations; ++i)
        for (unsigned j = 0; j < scene->mAnimations[i]->mNumChannels; ++j) {
            const aiNodeAnim* const channel = scene->mAnimations[i]->mChannels[j];
            channels_[channel->mNodeName.C_Str()] = channel;
        }
    Add(*scene->mRootNode);
}

// Above several roots there is one that the file does not have, and ends of chains are no joints.
void ReadBack::Add(const aiNode& node) {
    const std::string_view name = node.mName.C_Str();
    if (name != "ROOT" && !name.starts_with("EndSite_")) nodes_.push_back(&node);
    for (unsigned i = 0; i < node.mNumChildren; ++i)
        Add(*node.mChildren[i]);
}

std::vector<std::string> ReadBack::Names() const {
    std::vector<std::string> names;
    for (const aiNode* node : nodes_)
        names.emplace_back(node->mName.C_Str());
    return names;
}

const aiNodeAnim* ReadBack::ChannelOf(const aiNode& node) const {
    const auto found = channels_.find(node.mName.C_Str());
    return found == channels_.end() ? nullptr : found->second;
}

aiMatrix4x4 ReadBack::WorldOf(const aiNode& node, std::size_t key) const {
    aiMatrix4x4 local = node.mTransformation;
    if (const aiNodeAnim* const channel = ChannelOf(node))
        local = aiMatrix4x4(At(channel->mScalingKeys, channel->mNumScalingKeys, key),
                            At(channel->mRotationKeys, channel->mNumRotationKeys, key),
                            At(channel->mPositionKeys, channel->mNumPositionKeys, key));
    return node.mParent ? WorldOf(*node.mParent, key) * local : local;
}

Samples ReadBack::SamplesOf(std::size_t keys) const {
    Samples samples;
    for (const aiNode* const node : nodes_) {
        auto& own = samples[node->mName.C_Str()];
        own.clear();
        for (std::size_t key = 0; key < keys; ++key) {
            aiVector3D scale, at;
            aiQuaternion turn;
            WorldOf(*node, key).Decompose(scale, turn, at);
            own.push_back({at.x, at.y, at.z, turn.x, turn.y, turn.z, turn.w});
        }
    }
    return samples;
}

std::vector<double> ReadBack::KeySeconds(std::size_t animation) const {
    std::vector<double> seconds;
    const aiAnimation& told = *Scene().mAnimations[animation];
    for (unsigned i = 0; i < told.mNumChannels; ++i) {
        const aiNodeAnim& channel = *told.mChannels[i];
        if (channel.mNumRotationKeys <= seconds.size()) continue;
        seconds.clear();
        for (unsigned key = 0; key < channel.mNumRotationKeys; ++key)
            seconds.push_back(channel.mRotationKeys[key].mTime / told.mTicksPerSecond);
    }
    return seconds;
}

#if defined(NODE_MODULES)
bool HasValidator() {
    return std::filesystem::exists(NODE_MODULES "/gltf-validator");
}

std::string Findings(const TemporaryFolder& folder, const std::vector<std::string>& files) {
    std::string words = VALIDATE " " NODE_MODULES;
    for (const std::string& file : files)
        words += ' ' + file;
    const int status = platform::RunProgram({.program = NODE,
                                             .arguments = platform::FromNarrow(words).native(),
                                             .out = folder.Path() / "found",
                                             .error = folder.Path() / "failed",
                                             .folder = folder.Path()});
    return ReadFile(folder.Path() / "found") + (status ? ReadFile(folder.Path() / "failed") : "");
}
#else
bool HasValidator() {
    return false;
}

std::string Findings(const TemporaryFolder&, const std::vector<std::string>&) {
    return {};
}
#endif
