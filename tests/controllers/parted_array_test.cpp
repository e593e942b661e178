#include "controllers/parted_array.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// Large, so that a part holds few.
struct Element {
    int number = 0;
    char rest[252]{};
};

std::vector<int> Numbers(const PartedArray<Element>& array) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < array.size(); ++i)
        numbers.push_back(array[i].number);
    return numbers;
}

// Grows from nothing to some thousand elements and shrinks again, by turns in runs and at random.
TEST(PartedArray, AgreesWithAPlainArrayWhateverComesAndGoesWhere) {
    PartedArray<Element> array;
    std::vector<int> plain;
    std::mt19937 random(7);
    const auto place = [&](std::size_t count) { return count == 0 ? 0 : random() % count; };
    for (int round = 0; round < 60; ++round) {
        const bool grows = round % 12 < 6;
        const auto step = static_cast<std::ptrdiff_t>(random() % 3) - 1;
        std::size_t at = place(plain.size());
        for (int i = 0; i < 300 && (grows || !plain.empty()); ++i) {
            at = random() % 50 == 0 || round % 3 == 0 ? place(plain.size())
                                                      : at + static_cast<std::size_t>(step);
            at = std::min(at, grows ? plain.size() : plain.size() - 1);
            const auto there = plain.begin() + static_cast<std::ptrdiff_t>(at);
            if (grows) {
                plain.insert(there, round * 300 + i);
                array.insert(at, {round * 300 + i, {}});
            } else {
                plain.erase(there);
                array.erase(at);
            }
        }
        ASSERT_EQ(Numbers(array), plain) << "after round " << round;
        if (random() % 4 != 0) continue;
        array.Whole();
        ASSERT_EQ(Numbers(array), plain) << "as one, after round " << round;
    }
}

}  // namespace
