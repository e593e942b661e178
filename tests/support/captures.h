#pragma once

#include <string>

// The folder of the captures that Debian's package assimp-testmodels brings, and one of them: a
// person who turns round.
inline const std::string kRealCaptures = "/usr/share/assimp/models/BVH/";
inline const std::string kRealCapture = kRealCaptures + "01_01.bvh";
