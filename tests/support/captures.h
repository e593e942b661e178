#pragma once

#include <string>

// One of the captures that Debian's package assimp-testmodels brings: a person who turns round.
inline const std::string kRealCapture = "/usr/share/assimp/models/BVH/01_01.bvh";
