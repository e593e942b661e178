#include "controllers/key_table.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();

KeyTable<float> TableOf(std::initializer_list<TimeValue> times) {
    KeyTable<float> table;
    for (const TimeValue t : times)
        table.keys.push_back({7, t, static_cast<float>(t)});
    return table;
}

// The plain form of the search: nearest of all, the earlier of two.
TimeValue NearestByScan(const KeyTable<float>& table, TimeValue t) {
    const TarvoKey<float>* nearest = &table.keys.front();
    for (const TarvoKey<float>& key : table.keys) {
        if (std::abs(std::int64_t{key.time} - t) < std::abs(std::int64_t{nearest->time} - t))
            nearest = &key;
    }
    return nearest->time;
}

TEST(KeyTable, WithoutKeysEveryLookupGivesTheInvalidKey) {
    KeyTable<Matrix3> table;
    for (const TimeValue t : {kFirst, -1, 0, kLast}) {
        EXPECT_EQ(&table.FindNearestKey(t), &KeyTable<Matrix3>::InvalidKey());
        EXPECT_EQ(&table.FindExactKey(t), &KeyTable<Matrix3>::InvalidKey());
        EXPECT_EQ(table.IndexOf(t), -1);
        EXPECT_TRUE(table.FindBracket(t).IsOneKey());
    }
    EXPECT_EQ(KeyTable<Matrix3>::InvalidKey().time, -1);
    EXPECT_EQ(KeyTable<Matrix3>::InvalidKey().value, Matrix3());
}

TEST(KeyTable, TimesAtTheEndsOfTheRangeDoNotOverflow) {
    KeyTable<float> table = TableOf({kFirst, -2, kLast});
    EXPECT_EQ(table.FindNearestKey(kFirst + 1).time, kFirst);
    EXPECT_EQ(table.FindNearestKey(kLast - 1).time, kLast);
    EXPECT_EQ(table.FindNearestKey(-3).time, -2);
    const KeyBracket<float> wide = table.FindBracket(1073741822);
    EXPECT_EQ(wide.left->time, -2);
    EXPECT_EQ(wide.Fraction(1073741822), 0.5f);
}

TEST(KeyTable, TheNearestKeyIsThatOfAPlainScanFromWhateverPositionTheSearchStarts) {
    std::mt19937 random(20);
    KeyTable<float> table;
    TimeValue time = -4000;
    for (int i = 0; i < 300; ++i)
        table.keys.push_back({0, time += 1 + static_cast<TimeValue>(random() % 50), 0});
    for (int i = 0; i < 20000; ++i) {
        const auto t = static_cast<TimeValue>(random() % 16000) - 6000;
        if (i % 3 == 0) table.lookupIndex = static_cast<std::int32_t>(random());
        ASSERT_EQ(table.FindNearestKey(t).time, NearestByScan(table, t)) << t;
        ASSERT_EQ(table.At(table.lookupIndex).time, NearestByScan(table, t)) << t;
    }
}

}  // namespace
