#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

// Of each node, by its name, what `sample` tells at each moment: its place, metres, and its turn as
// a quaternion x, y, z, w.
using Samples = std::map<std::string, std::vector<std::array<double, 7>>>;

inline Samples SamplesIn(const std::string& table) {
    Samples samples;
    std::istringstream rows(table);
    std::string row, part;
    std::getline(rows, row);
    while (std::getline(rows, row)) {
        std::istringstream parts(row);
        std::getline(parts, part, ',');
        std::getline(parts, part, ',');
        std::array<double, 7>& sample = samples[part].emplace_back();
        for (double& number : sample) {
            std::getline(parts, part, ',');
            number = std::stod(part);
        }
    }
    return samples;
}

// That each node of these is there, at each moment, within 10 micrometres and half a degree.
inline void ExpectThere(const Samples& meant, const Samples& found) {
    double furthest = 0, unlike = 0;
    for (const auto& [name, samples] : meant) {
        ASSERT_TRUE(found.contains(name)) << name;
        ASSERT_EQ(found.at(name).size(), samples.size()) << name;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            double product = 0;
            for (std::size_t part = 0; part < 7; ++part) {
                const double a = samples[i][part], b = found.at(name)[i][part];
                if (part < 3)
                    furthest = std::max(furthest, std::abs(a - b));
                else
                    product += a * b;
            }
            unlike = std::max(unlike, 1 - std::abs(product));
        }
    }
    EXPECT_LT(furthest, 1e-5);
    EXPECT_LT(unlike, 1e-5);
}
