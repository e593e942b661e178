#pragma once

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/folder/temporary_folder.h"

// How a call of the command ends.
struct Ending {
    int status;
    std::string out;
    std::string error;
};

// The command as a person calls it, in a folder of its own, where it runs.
class Command : public testing::Test {
  protected:
    using Json = nlohmann::json;

    std::string File(const std::string& name) const { return folder_.File(name); }
    std::string Write(const std::string& name, const std::string& text) const {
        return folder_.Write(name, text);
    }
    std::string Read(const std::string& name) const { return ReadFile(File(name)); }

    // Runs it with the Core that is installed below `coreFolder`.
    Ending Run(const std::string& words, const std::string& coreFolder = CORE_FOLDER) const;

    // The same; the test fails unless all went well. Gives what was printed.
    std::string Do(const std::string& words, const std::string& coreFolder = CORE_FOLDER) const;

    // What is told to a program.
    Json Ask(const std::string& words, const std::string& coreFolder = CORE_FOLDER) const {
        return Json::parse(Do(words + " --json", coreFolder));
    }

    // Fails with one line, which begins with `what`.
    void ExpectRefusal(const std::string& words, const std::string& what, int status,
                       const std::string& coreFolder = CORE_FOLDER) const;

    // All files in its folder by their names, with their bytes, but for those of the test itself.
    std::map<std::string, std::string> Files() const;

    TemporaryFolder folder_;
    std::string documents_;  // the user's folder of documents; none if empty
};

// The values at these places, as they were told, with a blank between them.
std::string Line(const nlohmann::json& told, std::initializer_list<const char*> places);
