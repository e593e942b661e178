#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "tests/support/captures.h"
#include "tests/support/folder/temporary_folder.h"

// The whole system as a person meets it: a running host with the real plug-in and the example Core,
// found through a registry of their own. The Core is told around the host what to record. At its
// end nothing may be left alive.
class Stage {
  public:
    Stage();
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    headless::Session& Host() { return session_; }

    // Sets a variable for the presses that follow; an empty value takes it away. All are gone at
    // the end.
    void Tell(const std::string& variable, const std::string& value);

    // Presses the button that calls the Core, and gives what the Core reports.
    std::map<std::string, std::string> Press();

    // The same for one capture; the test fails unless all of it went well.
    std::map<std::string, std::string> Record(const std::string& capture);

    // Saves the scene and opens what was saved.
    void Reopen();

    // A file in a folder that goes with the stage.
    std::string File(std::string_view name) const { return folder_.File(name); }
    std::string WriteFile(std::string_view name, std::string_view text) const {
        return folder_.Write(name, text);
    }

  private:
    TemporaryFolder folder_;
    std::map<std::string, std::string> told_;
    std::size_t aliveBefore_ = headless::TakeCensus().heapBlocks;
    headless::Session session_;
};

// The node of that host name; the test fails if there is none.
headless::NodeView View(std::string_view hostName);

// Where the host has it at a frame of the walk, in Core space, metres.
using Place = std::array<double, 3>;
Place PlaceOf(std::string_view hostName, int frame);
void ExpectPlace(std::string_view hostName, int frame, const Place& expected, double tolerance);

// What a person draws into the scene.
INode* Put(Object* object, const char* name, const Matrix3& world = Matrix3());
inline std::string HandleOf(INode* node) {
    return std::to_string(node->GetHandle());
}

inline constexpr double kUnitsPerMetre = 39.37;  // of the host's, at its start
inline constexpr int kTicksPerFrame = 240;  // of the walk, at the host's 4800 ticks in a second

// A capture of two joints, "Hip" and below it "Knee", that walks along: frame f of the text, which
// is a metre each unit and 0.05 seconds each frame, has the hip at (f / 10, 1, 0) and the knee half
// a metre below it, swung forward by f degrees about X.
std::string Walk(std::size_t frames);
