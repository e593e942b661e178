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

    static void Place(TVL::Log& outside) {
        if (TVL::Log::instance) TVL::Log::instance->Destroy();
        TVL::Log::instance = &outside;
        TVL::Log::external = true;
    }
    static void TakeBack() {
        if (TVL::Log::external) TVL::Log::instance = nullptr;
        TVL::Log::external = false;
    }

  private:
    static void Reset() {
        TakeBack();
        TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    }
};
