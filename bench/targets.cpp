#include "bench/targets.h"

namespace {

// "r times as fast as the peer" is a time of 1 / r of its time. The times of undo and redo are half
// of what they were when this table was made. Works are shown in this order.
constexpr Target kTargets[] = {
    {"evaluate in one bracket", "osg", Figure::kRatio, 1.2},
    {"evaluate in new brackets", "glm", Figure::kRatio, 0.8},
    {"evaluate at a key", "", Figure::kNanoseconds, 20},
    {"evaluate again", "", Figure::kNanoseconds, 20},
    {"find a bracket, even keys", "lower_bound"},
    {"find a bracket, even keys", "", Figure::kNanoseconds, 20},
    {"find a bracket, uneven keys", "lower_bound", Figure::kRatio, 1},
    {"scalar at random", "sorted arrays", Figure::kRatio, 1},
    {"scalar in one bracket", "sorted arrays", Figure::kRatio, 1},
    {"a pose backward", "forward", Figure::kRatio, 1.2},
    {"a pose at random", "forward", Figure::kRatio, 2},
    {"a sample's road, held", "by hand", Figure::kRatio, 1.5},
    {"a sample's road, held", "", Figure::kBytes, 250},
    {"a sample with a tape", "without"},
    {"a sample with the watch", "without"},
    {"undo a take, a sample", "", Figure::kNanoseconds, 55},
    {"undo a take, a sample", "", Figure::kGrowth, 1.1},
    {"redo a take, a sample", "", Figure::kNanoseconds, 55},
    {"redo a take, a sample", "", Figure::kGrowth, 1.1},
    {"save keys to memory", "memcpy", Figure::kRatio, 1.5},
    {"load keys from memory", "memcpy", Figure::kRatio, 1.5},
    {"save 180 MB, a byte", "fwrite", Figure::kRatio, 1 / 0.7},
    {"save 180 MB, a byte", "with fsync", Figure::kRatio, 1 / 0.7},
    {"save 180 MB, a byte", "", Figure::kBytes, 1.1},
    {"open 180 MB, a byte", "fread", Figure::kRatio, 1 / 0.5},
    {"trace below the limit, scope", "", Figure::kNanoseconds, 20},
    {"trace below the limit, scope", "", Figure::kAllocations, 0},
    {"trace below the limit, local", "", Figure::kNanoseconds, 20},
    {"trace below the limit, local", "", Figure::kAllocations, 0},
    {"XML parse, a kB", "tinyxml2", Figure::kRatio, 1 / 1.6},
    {"XML parse, a kB", "copy and free", Figure::kRatio, 1.2},
    {"XML write of state, a kB", "pugixml", Figure::kRatio, 1 / 0.95},
    {"XML write of texts, a kB", "pugixml", Figure::kRatio, 1 / 0.95},
    {"base64 encode, a kB", "EVP", Figure::kRatio, 1 / 1.2},
    {"base64 decode, a kB", "EVP", Figure::kRatio, 1 / 1.2},
    {"Huffman decode of prose, a kB", "zlib", Figure::kRatio, 1 / 1.8},
    {"Huffman decode of numbers, a kB", "zlib", Figure::kRatio, 1 / 1.8},
    {"Huffman decode of XML, a kB", "zlib", Figure::kRatio, 1 / 1.8},
    {"store the scene's state", "", Figure::kGrowth, 1.2},
    {"gather the scene's state", "", Figure::kGrowth, 1.2},
    {"record the demo's capture", "", Figure::kInstructions, 1.04e9},
};

}  // namespace

std::span<const Target> Targets() {
    return kTargets;
}
