#include <gtest/gtest.h>

#include "headless/breaches.h"

// In every test program that has a host: a test fails on each breach that it has not taken itself.
namespace {

class NoBreaches final : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override { Complain(); }
    void OnTestProgramEnd(const testing::UnitTest&) override { Complain(); }

    static void Complain() {
        for (const std::string& line : headless::TakeBreachLines())
            ADD_FAILURE() << "breach: " << line;
    }
};

[[maybe_unused]] const bool watching = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new NoBreaches);
    return true;
}();

}  // namespace
