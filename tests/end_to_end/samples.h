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
        for (double& number : samples[part].emplace_back()) {
            std::getline(parts, part, ',');
            number = std::stod(part);
        }
    }
    return samples;
}

// How far each node is, at any moment, from where it is meant to be, metres; or 1 for each turn
// that is half a degree off.
inline double FurthestOff(const Samples& meant, const Samples& found) {
    double furthest = 0;
    for (const auto& [name, samples] : meant) {
        EXPECT_TRUE(found.contains(name)) << name;
        if (!found.contains(name) || found.at(name).size() != samples.size()) return NAN;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            double product = 0;
            for (std::size_t part = 0; part < 7; ++part) {
                const double a = samples[i][part], b = found.at(name)[i][part];
                part < 3 ? furthest = std::max(furthest, std::abs(a - b)) : product += a * b;
            }
            if (std::abs(product) < 1 - 1e-5) furthest += 1;
        }
    }
    return furthest;
}
