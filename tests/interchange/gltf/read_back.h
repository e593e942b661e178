#pragma once

#include <assimp/scene.h>

#include <array>
#include <assimp/Importer.hpp>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tests/support/folder/temporary_folder.h"

// A file as another program reads it, which sees nothing of what wrote it.
class ReadBack {
  public:
    explicit ReadBack(const std::string& file);

    // All nodes, each before what is below it.
    std::vector<std::string> Names() const;

    // Where a node is in the world at a key of all animations, or, without keys, always.
    std::array<double, 3> PlaceOf(std::size_t node, std::size_t key) const;

    // And how it is turned there, as a quaternion x, y, z, w.
    std::array<double, 4> TurnOf(std::size_t node, std::size_t key) const;

    std::vector<double> KeySeconds(std::size_t animation) const;

    const aiScene& Scene() const { return *importer_.GetScene(); }

    // Of the first animation; null for a node that stands still.
    const aiNodeAnim* ChannelOf(const std::string& name) const;

  private:
    void Add(const aiNode& node);
    aiMatrix4x4 WorldOf(std::size_t node, std::size_t key) const;
    aiMatrix4x4 BesideParent(const aiNode& node, std::size_t key) const;

    Assimp::Importer importer_;
    std::vector<const aiNode*> nodes_;
    std::map<std::string, const aiNodeAnim*> channels_;
};

// What npm's gltf-validator says of the files in the folder, a line each; nothing if all is well.
bool HasValidator();
inline constexpr char kNoValidator[] = "gltf-validator is missing: the files were not validated";
std::string Findings(const TemporaryFolder& folder, const std::vector<std::string>& files);
