#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/gltf_mesh.h"
#include "interchange/local_motion.h"
#include "interchange/take.h"

namespace interchange {

// The frames of a take as they stand in a file.
struct ReadMotion {
    const Take* take = nullptr;
    std::vector<float> times;  // of the keys, seconds
    std::vector<NodeMotion> nodes;

    bool Moves() const;
};

// What a glTF file says of takes, and the bytes that it refers to, all of them numbers of 4 bytes.
class GltfScene {
  public:
    // The motions are where the bytes are: they outlive it. What it cannot hold of their cameras is
    // added to the losses, one for each motion.
    GltfScene(const std::vector<ReadMotion>& motions, std::vector<Loss>& losses);

    // All but the buffer.
    nlohmann::ordered_json json;

    // In the order of the buffer.
    std::vector<std::string_view> bytes;
    std::size_t byteCount = 0;

  private:
    using Json = nlohmann::ordered_json;

    void TellShapes(const std::vector<ReadMotion>& motions);
    Json TellMesh(const SharedVertices::Mesh& mesh);
    void TellNodes(const ReadMotion& motion, bool isOneOfSeveral, Loss& loss);
    Json NodeOf(const ReadMotion& motion, std::size_t node, Loss& loss);
    void TellAnimation(const ReadMotion& motion, std::size_t firstNode);
    std::size_t TellKeys(const std::vector<float>& keys, std::size_t count, const char* type);

    std::size_t AddBytes(const void* data, std::size_t size);
    void TellView(std::size_t start, Json view);

    // Puts it at the end of the list of that name, and gives its number there.
    std::size_t Tell(const char* list, Json entry);

    SharedVertices vertices_;
    std::vector<Json> meshes_;  // the number of a mesh for each node of all takes; null for none
    std::size_t nodesTold_ = 0;
    std::size_t motionStart_ = 0;
    std::size_t motionView_ = 0;
};

}  // namespace interchange
