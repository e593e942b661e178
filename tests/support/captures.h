#pragma once

#include <string>
#include <vector>

// Of Debian's package assimp-testmodels.
inline const std::string kRealCaptures = "/usr/share/assimp/models/BVH/";

// A person who turns round.
inline const std::string kRealCapture = kRealCaptures + "01_01.bvh";

struct Capture {
    std::string path;
    std::string metresPerUnit;
};

// The real ones, which need not be there, and those in tests/captures, which is `folder`: each of
// them has one thing that those of people do not.
inline std::vector<Capture> AllCaptures(const std::string& folder) {
    std::vector<Capture> captures = {{kRealCapture, "0.056444"},
                                     {kRealCaptures + "01_03.bvh", "0.056444"},
                                     {kRealCaptures + "Boxing_Toes.bvh", "0.01"}};
    for (const char* name : {"two_roots", "six_channels", "other_orders", "hinges", "uneven_rate"})
        captures.push_back({folder + '/' + name + ".bvh", "1"});
    return captures;
}
