#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "tvl/error_code.h"
#include "tvl/log.h"

// A world in which no log, registry or collector exists yet.
class FreshSingletons : public testing::Test {
  protected:
    FreshSingletons() { Reset(); }
    ~FreshSingletons() override { Reset(); }

    static std::string Trace() { return TVL::Log::GetInstance()->GetBufferedText(); }

    // The trace without the date and the time at the front of each line.
    static std::string Lines() {
        constexpr std::size_t momentLength = sizeof("20061204 09:05:00 ") - 1;
        std::string lines;
        std::istringstream trace(Trace());
        for (std::string line; std::getline(trace, line);) {
            lines += line.substr(std::min(momentLength, line.size())) + '\n';
        }
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
        if (!T::external) return;
        T::instance = nullptr;
        T::external = false;
    }

  private:
    static void Reset() {
        TakeBack<TVL::Log>();
        TakeBack<TVL::ErrorCode>();
        TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
    }
};
