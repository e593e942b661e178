#pragma once

#include <string>
#include <vector>

// A capture that goes out into other programs, and how `record` has to read it.
struct Capture {
    std::string path;
    std::string options;
};

// Debian's package assimp-testmodels brings the real ones. Each of the others, which lie in
// CAPTURES, has one thing that those have not.
inline const std::vector<Capture> kCaptures = {
    {"/usr/share/assimp/models/BVH/01_01.bvh", ""},
    {"/usr/share/assimp/models/BVH/01_03.bvh", ""},
    {"/usr/share/assimp/models/BVH/Boxing_Toes.bvh", " --scale 0.01"},
    {CAPTURES "/two_roots.bvh", " --scale 1"},
    {CAPTURES "/six_channels.bvh", " --scale 1"},
    {CAPTURES "/other_orders.bvh", " --scale 1"},
    {CAPTURES "/hinges.bvh", " --scale 1"},
    {CAPTURES "/uneven_rate.bvh", " --scale 1"}};
