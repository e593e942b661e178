#include "controllers/key_table.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();

// The plain form of the search: nearest of all, the earlier of two.
TimeValue NearestByScan(const KeyTable<float>& table, TimeValue t) {
    TimeValue nearest = table.keys.front().time;
    for (const TarvoKey<float>& key : table.keys)
        if (std::abs(std::int64_t{key.time} - t) < std::abs(std::int64_t{nearest} - t))
            nearest = key.time;
    return nearest;
}

TEST(KeyTable, TheNearestKeyIsThatOfAPlainScanFromWhateverPositionTheSearchStarts) {
    std::mt19937 random(20);
    KeyTable<float> table;
    for (const TimeValue t : {kFirst, -1, 0, kLast}) {
        EXPECT_EQ(&table.FindNearestKey(t), &KeyTable<float>::InvalidKey());
        EXPECT_EQ(&table.FindExactKey(t), &KeyTable<float>::InvalidKey());
        EXPECT_TRUE(table.FindBracket(t).IsOneKey());
    }
    EXPECT_EQ(table.FindNearestKey(0).time, -1);
    table.keys.push_back({0, kFirst, 0});
    for (TimeValue time = -4000; time < 4000;)
        table.keys.push_back({0, time += 1 + static_cast<TimeValue>(random() % 50), 0});
    table.keys.push_back({0, kLast, 0});
    for (int i = 0; i < 20000; ++i) {
        const auto t = i % 9 == 0 ? static_cast<TimeValue>(random())
                                  : static_cast<TimeValue>(random() % 10000) - 5000;
        if (i % 3 == 0) table.lookupIndex = static_cast<std::int32_t>(random());
        ASSERT_EQ(table.FindNearestKey(t).time, NearestByScan(table, t)) << t;
        ASSERT_EQ(table.At(table.lookupIndex).time, NearestByScan(table, t)) << t;
    }
    const KeyBracket<float> wide{&table.keys.front(), &table.keys.back()};
    EXPECT_EQ(wide.Fraction(-1), 0.5F);
}

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
