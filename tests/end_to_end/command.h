#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/narrow_path.h"
#include "tests/support/captures.h"
#include "tests/support/folder/temporary_folder.h"

#if defined(_WIN32)
inline constexpr bool kIsWindows = true;
#else
inline constexpr bool kIsWindows = false;
#endif

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

    Ending Run(const std::string& words) const;

    // The same; the test fails unless all went well. Gives what was printed.
    std::string Do(const std::string& words) const;

    // What is told to a program.
    Json Ask(const std::string& words) const { return Json::parse(Do(words + " --json")); }

    // Fails with one line, which begins with `what`. Gives it.
    std::string ExpectRefusal(const std::string& words, const std::string& what, int status) const;

    // All files in its folder by their names, with their bytes, but for those of the test itself.
    std::map<std::string, std::string> Files() const;

    TemporaryFolder folder_;
    bool isWatched_ = true;           // whatever starts a Core, so that a wrong call fails the test
    std::string core_ = CORE_FOLDER;  // below which a Core is installed
    std::string documents_;           // the user's folder of documents; none if empty
};

// The values at these places, as they were told, with a blank between them.
std::string Line(const nlohmann::json& told, std::initializer_list<const char*> places);

inline constexpr double kUnitsPerMetre = 39.37;  // of the host's, at its start

// A capture of two joints, "Hip" and below it "Knee", that walks along: frame f of the text, which
// is a metre each unit and 0.05 seconds each frame, has the hip at (f / 10, 1, 0) and the knee half
// a metre below it, swung forward by f degrees about X.
std::string Walk(std::size_t frames);

// The text with the first place of `from` replaced.
std::string With(std::string text, const std::string& from, const std::string& to);
