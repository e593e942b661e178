#pragma once

#include <string>
#include <vector>

#include "command/core_stage.h"
#include "headless/viewport.h"

namespace headless {

// Frames of the scene, or of a take: the first, every further one in steps, and the last if a step
// meets it.
struct FrameRange {
    int first = 0;
    int last = 0;
    int step = 1;

    std::size_t Count() const;
    int At(std::size_t index) const;
};

// The place in the name of a file where the number of a frame goes, in four digits or more.
inline constexpr char kFramePlace[] = "%04d";
std::size_t FramePlaces(const std::string& file);

inline constexpr char kPictureEnding[] = ".png";

// What the viewport's own camera does from one frame to the next.
enum class CameraMotion {
    kStands,   // it holds the whole motion
    kFollows,  // what moves
    kEach,     // is aimed anew at each moment
};

struct RenderOptions {
    std::string scene;
    std::string file;  // with a place for the frame's number if a file holds one frame of several
    GuestChoice guests;
    ViewportSettings view;
    double seconds = 0;              // if there are no frames
    std::vector<FrameRange> frames;  // none, or one
    std::string take{};              // whose frames these are; empty for the scene's
    CameraMotion motion = CameraMotion::kStands;
    int sheetColumns = 0;  // 0: every frame in a file of its own
};

struct RenderResult {
    std::vector<std::string> files;
    int width = 0;
    int height = 0;
    std::vector<std::string> complaints;
};

// Each throws a Failure; the first sets these words ahead of the reason.
Picture PictureAt(const ViewportSettings& view, TimeValue t, const std::string& ahead);
void SavePicture(const Picture& picture, const std::string& file);

// Opens the scene and draws it. What cannot be done is thrown as a Failure; of several files those
// that were drawn before it stand.
RenderResult Render(const RenderOptions& options);

}  // namespace headless
