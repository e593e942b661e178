#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/folder/temporary_folder.h"

// The command as a person calls it, in a folder of its own.
struct Ending {
    int status;
    std::string out;
    std::string error;
};

class Command : public testing::Test {
  protected:
    std::string File(const std::string& name) const { return folder_.File(name); }
    std::string Write(const std::string& name, const std::string& text) const {
        return folder_.Write(name, text);
    }
    static std::string Read(const std::string& path) { return ReadFile(path); }

    // Runs it with the Core that is installed below `coreFolder`.
    Ending Run(const std::string& arguments, const std::string& coreFolder = CORE_FOLDER) const;

    // The same; the test fails unless all went well. Gives what was printed.
    std::string Do(const std::string& arguments, const std::string& coreFolder = CORE_FOLDER) const;

    // Fails with one line, which begins with `what`.
    static void ExpectFailure(const Ending& ending, const std::string& what, int status = 1);

    // The greatest difference of two numbers in one place of two tables that agree in all else.
    static double FurthestApart(std::string first, std::string second);

    TemporaryFolder folder_;
    std::string documents_;  // the user's folder of documents; none if empty
};
