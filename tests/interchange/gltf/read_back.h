#pragma once

#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tests/end_to_end/samples.h"
#include "tests/support/folder/temporary_folder.h"

// A file as another program reads it, which sees nothing of what wrote it.
class ReadBack {
  public:
    explicit ReadBack(const std::string& file);

    // Of all nodes, each before what is below it; ends of chains are none.
    std::vector<std::string> Names() const;

    // In the world, at so many keys of the first animation. Of nodes of one name the last counts.
    Samples SamplesOf(std::size_t keys) const;

    std::vector<double> KeySeconds(std::size_t animation) const;

    const aiScene& Scene() const { return *importer_.GetScene(); }

    // Of the first animation; null for a node that stands still.
    const aiNodeAnim* ChannelOf(const aiNode& node) const;

  private:
    void Add(const aiNode& node);
    aiMatrix4x4 WorldOf(const aiNode& node, std::size_t key) const;

    Assimp::Importer importer_;
    std::vector<const aiNode*> nodes_;
    std::map<std::string, const aiNodeAnim*> channels_;
};

// What npm's gltf-validator says of the files in the folder, a line each; nothing if all is well.
bool HasValidator();
inline constexpr char kNoValidator[] = "gltf-validator is missing: the files were not validated";
std::string Findings(const TemporaryFolder& folder, const std::vector<std::string>& files);
