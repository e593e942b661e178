#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "headless/storage/chunks.h"

// What stands in a scene file where; docs/scene-file.md has it byte by byte. The header is the
// magic and the version. Then come the chunks below, in the order of their ids, each with the
// checksum of its id, its length and its contents as the last bytes of these.
namespace headless {

inline constexpr std::string_view kSceneMagic = "LumScene";
inline constexpr std::uint32_t kSceneVersion = 1;
inline constexpr std::size_t kSceneHeaderBytes = kSceneMagic.size() + sizeof kSceneVersion;
inline constexpr std::size_t kChecksumBytes = 4;

enum SceneChunk : std::uint16_t {
    kSettingsChunk = 1,  // once
    kObjectChunk = 2,    // one for each
    kNodeChunk = 3,
    kUtilityChunk = 4,
    kEndChunk = 5,  // once; how many objects, nodes and utilities there are
};

inline constexpr std::size_t kEndChunkBytes =
    kChunkHeaderBytes + 3 * sizeof(std::uint32_t) + kChecksumBytes;

inline constexpr std::size_t kReferenceBytes = 5;  // the kind of target, and its index

// Flags of a node.
inline constexpr std::uint8_t kHiddenFlag = 1;
inline constexpr std::uint8_t kSelectedFlag = 2;

// References of a node, by their index.
inline constexpr std::size_t kTransformReference = 0;
inline constexpr std::size_t kObjectReference = 1;
inline constexpr std::size_t kNodeReferences = 2;

// Half of all handles stay free, so that whoever opens a scene can go on.
inline constexpr std::uint32_t kLastStoredHandle = 0x7FFFFFFF;

// How many references may lie behind one another. Real chains are a handful long; what walks along
// them, such as copying, does so by recursion.
inline constexpr std::size_t kLongestReferenceChain = 256;

}  // namespace headless
