#include <array>
#include <limits>

#include "command/step_acts.h"
#include "command/steps.h"

namespace headless {
namespace {

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

constexpr auto kKinds = std::to_array<StepKind>({
    {"attach", "", "Attach the Core, unless it is attached", 0, 0, &MakeAttach},
    {"detach", "", "Detach the Core", 0, 0, &MakeDetach},
    {"press", "ID", "Press the button of this number, or text, in the panel", 1, 1, &MakePress},
    {"option", "ID", "Press the Core's option of this number, or name", 1, 1, &MakeOption},
    {"convert", "", "Turn all controllers into the host's own, by option 1028", 0, 0, &MakeConvert},
    {"time", "SECONDS", "Go to a time", 1, 1, &MakeTime},
    {"play", "START:END[:STEP]", "Go through times, frame by frame if no step is said", 1, 1,
     &MakePlay},
    {"select", "NAME...", "Select the nodes of these names alone", 1, kAny, &MakeSelect},
    {"delete", "", "Delete what is selected", 0, 0, &MakeDelete},
    {"undo", "[N]", "Undo one step, or as many", 0, 1, &MakeUndo},
    {"redo", "[N]", "Redo one step, or as many", 0, 1, &MakeRedo},
    {"move", "NAME X,Y,Z", "Move a node to a place at the current time", 2, 2, &MakeMove},
    {"parent", "NAME [NAME]", "Link a node to another, or to none", 1, 2, &MakeParent},
    {"new", "", "Empty the scene", 0, 0, &MakeNew},
    {"reset", "", "Empty the scene, and put units, rate and times back", 0, 0, &MakeReset},
    {"open", "FILE", "Open a scene", 1, 1, &MakeOpen, StepFile::kOpened},
    {"merge", "FILE", "Merge a scene, as the host does", 1, 1, &MakeMerge, StepFile::kMerged},
    {"save", "FILE", "Save the scene", 1, 1, &MakeSave, StepFile::kSaved},
    {"render", "FILE", "Draw the scene at the current time as a PNG file", 1, 1, &MakeRender,
     StepFile::kDrawn},
    {"expect nodes", "N", "So many nodes are in the scene", 1, 1, &MakeExpectNodes},
    {"expect undo", "\"LABEL\"", "This is undone next; \"\" for nothing", 1, 1, &MakeExpectUndo},
    {"expect at", "SECONDS NAME X,Y,Z [TOLERANCE]",
     "At this time the node is there, within 0.001 m", 3, 4, &MakeExpectAt},
    {"expect box", "\"TEXT\"", "A message box holds this, other than one that was expected before",
     1, 1, &MakeExpectBox},
});

}  // namespace

std::span<const StepKind> StepKinds() {
    return kKinds;
}

}  // namespace headless
