#include "controllers/parted_array.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

// Large, so that a part of the array holds few.
struct Element {
    int number = 0;
    char rest[252]{};
};

// Grows from nothing to some thousand elements and shrinks again, by turns in runs and at random.
TEST(PartedArray, AgreesWithAPlainArrayWhateverComesAndGoesWhere) {
    PartedArray<Element> array;
    std::vector<int> plain;
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        const bool grows = round % 12 < 6;
        const auto step = random() % 3 - 1;
        std::size_t at = 0;
        for (int i = 0; i < 300 && (grows || !plain.empty()); ++i) {
            const std::size_t places = plain.size() + (grows ? 1 : 0);
            at = i == 0 || random() % 50 == 0 || round % 3 == 0 ? random() % places : at + step;
            at = std::min(at, places - 1);
            const auto there = plain.begin() + static_cast<std::ptrdiff_t>(at);
            if (grows) {
                plain.insert(there, round * 300 + i);
                array.insert(at, {round * 300 + i, {}});
            } else {
                plain.erase(there);
                array.erase(at);
            }
        }
        if (random() % 4 == 0) array.Whole();
        ASSERT_EQ(array.size(), plain.size()) << "after round " << round;
        for (std::size_t i = 0; i < plain.size(); ++i)
            ASSERT_EQ(array[i].number, plain[i]) << "after round " << round;
    }
}

}  // namespace
