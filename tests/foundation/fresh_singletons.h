#pragma once

#include <gtest/gtest.h>

#include "tests/support/trace.h"
#include "tvl/error_code.h"
#include "tvl/message.h"

// A world in which no log, registry or collector exists yet.
class FreshSingletons : public testing::Test {
  protected:
    FreshSingletons() { Reset(); }
    ~FreshSingletons() override { Reset(); }

    // The trace without the date and the time at the front of each line.
    static std::string Lines() {
        std::string lines;
        for (const std::string& line : TracedLines())
            lines += line + '\n';
        return lines;
    }

    template <class T>
    static void Place(T& outside) {
        if (T::instance != nullptr) T::instance->Destroy();
        T::instance = &outside;
        T::external = true;
    }
    template <class T>
    static void TakeBack() {
        if (T::external) T::instance = nullptr;
        T::external = false;
    }

  private:
    static void Reset() {
        TakeBack<TVL::Log>();
        TakeBack<TVL::ErrorCode>();
        TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    }
};
