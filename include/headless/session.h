#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "headless/headless_api.h"
#include "host/class_desc.h"
#include "host/interval.h"
#include "host/point3.h"
#include "host/types.h"

// The stand-in host from the chair of the person who uses it: start it with its plug-ins, open a
// utility, press a button, select, delete, undo, and close it again. Between these, everything that
// include/host declares can be called as on the real host. See headless/scene_view.h for looking at
// what came of it.
namespace headless {

// One host unit is `unitScale` units of `unitType` (the numbers of host/units.h).
struct SessionSettings {
    int frameRate = 30;
    int ticksPerFrame = 160;
    int unitType = 0;  // inches, of which 39.37 make a metre
    float unitScale = 1;
};

// A setting in which `hostUnits` host units make a metre.
HEADLESS_API SessionSettings WithUnitsPerMetre(double hostUnits);

// A message box that a module shows. There is nobody to read it, so it is answered with OK at once.
struct MessageBoxText {
    std::string text;
    std::string caption;
    unsigned style = 0;
};
using MessageBoxHandler = std::function<void(const MessageBoxText&)>;

// What came of a scene file that was opened, saved or merged.
struct FileOutcome {
    std::string error;                    // why it was not done, in one line; empty if it was
    std::vector<std::string> complaints;  // what did not go well in what was done, a line each
};

// How far the session has come with a scene file. A file is gone through several times, each from 0
// to the whole in numbers of its own.
struct FileProgress {
    const char* doing = "";  // "Checking", "Reading" or "Writing"
    const std::string& path;
    std::uint64_t done = 0;
    std::uint64_t whole = 0;
};
using FileProgressHandler = std::function<bool(const FileProgress&)>;

// What the scene file that was opened holds of a utility.
struct UtilityChunksView {
    std::string className;
    Class_ID classId;
    std::uint64_t size = 0;  // bytes
    bool isRunning = false;  // the utility was there when the file was opened
    bool isTaken = false;    // it took all of them; those that it did not take are kept
};

// A page of the command panel that is open, with its buttons in the order of its template.
struct ButtonView {
    int controlId = 0;
    std::string text;
};
struct PageView {
    std::string title;
    std::vector<ButtonView> buttons;
};

// A running host. A process has one at a time; a second one can be made when the first is gone.
class HEADLESS_API Session {
  public:
    explicit Session(const SessionSettings& settings = {});
    ~Session();  // shuts down unless that has happened
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Plug-ins come before Start. The result is empty, or says what kept the module out: it could
    // not be loaded, one of the four exports is missing, or it was built for another host.
    std::string LoadPlugin(const std::string& path);

    // A class that is linked into the program. The descriptor stays the caller's and must outlive
    // the session.
    void RegisterClass(ClassDesc* descriptor);

    // Makes and starts the global utilities, in the order in which their classes became known.
    void Start();

    // How many of them asked to be kept.
    std::size_t KeptUtilities() const;

    // Notification 73, then `Stop` of each global utility; the panel closes, the scene and the
    // undo buffer are freed, and last the plug-in modules. Nothing may be asked of the host after
    // it but the census.
    void ShutDown();

    // Undo as the person sees it. False: the stack is empty, or a hold is open.
    bool Undo();
    bool Redo();
    std::vector<std::string> UndoLabels() const;  // the next one to be undone first
    std::vector<std::string> RedoLabels() const;  // the next one to be redone first

    // The command panel. A utility is known by the name of its class; opening one closes the one
    // that is open. False: no such utility, or it is not open.
    bool OpenUtility(std::string_view className);
    bool CloseUtility();
    bool IsUtilityOpen(std::string_view className) const;
    void SetTaskMode(int mode);

    // The names of all utilities that can be opened, and the rollup pages that are, oldest first.
    std::vector<std::string> Utilities() const;
    std::vector<PageView> Pages() const;

    // Presses a button on the pages that are open, the first of that id or text. False: no page has
    // one.
    bool PressButton(int controlId);
    bool PressButton(std::string_view text);

    // Puts a button onto the page that was opened last, behind what is there; it goes with the
    // page. False: no page is open.
    bool PlaceButton(int controlId, const std::string& text);

    // The scene. Names that no node has are passed over; the result is how many nodes were meant.
    std::size_t Select(const std::vector<std::string>& names);

    // What the delete key does: one undo step, announced with notification 70 while its hold is
    // open. Nodes that a callback takes out of the announced table, or deletes, are left alone.
    std::size_t DeleteSelected();

    // What a person does to one node with the mouse, each one undo step: moves its pivot to a place
    // in world space (host units) at the current time, and links it to another node, keeping where
    // it is (0: to none). While somebody's hold is open, the edit becomes part of that step. False,
    // and nothing is done: there is no such node, the link would close a circle, a coordinate is no
    // finite number, or a step is being undone or redone.
    bool MoveNode(std::uint32_t handle, const Point3& place);
    bool LinkNode(std::uint32_t handle, std::uint32_t parent);

    void SetTime(TimeValue t);
    void SetRange(Interval range);
    void PressAnimateButton(bool on);  // nothing while the button is disabled
    bool AnimateButtonEnabled() const;
    bool AcceleratorsEnabled() const;

    // Both empty the scene and the undo buffer, after notification 7 and 5; Reset also puts units,
    // frame rate, time, range and animate mode back to what they are at the start.
    void NewScene();
    void Reset();

    // Scene files. They are refused, like a new scene, from inside each other, from notification 9
    // to the end of the loading and from 13 to 14, and while a step is undone or redone.

    // A file that is refused leaves the scene as it is, and nobody hears of it. Else notification 9
    // with a pointer to an int 0, the scene and the undo buffer are emptied, a hold that somebody
    // left open is ended, then come the file's nodes and settings, `Load` of the global utilities,
    // and notification 10.
    FileOutcome OpenScene(const std::string& path);

    // Notification 13, the file with what the global utilities save, and always 14. On an error the
    // old file stands untouched.
    FileOutcome SaveScene(const std::string& path);

    // Adds the nodes of another file to the scene, selects them alone, and tells of it by
    // notification 12; no utility loads anything. It is no undo step, unless a hold is open, and
    // older steps stay.
    FileOutcome MergeScene(const std::string& path);

    // Is told of scene files that are opened, saved, merged and looked at
    // (headless/scene_file_view), whoever asked for that, a few times for each node or so. Its
    // answer false gives the work up, and what it gave up is an error of the outcome: a save then
    // leaves the old file untouched, a merge adds nothing, and a file that is opened leaves the
    // scene as it is. Once the scene has been emptied for that, the opening goes on to its end all
    // the same, unless there was no node in it. An empty handler ends it, and so does the end of a
    // session.
    static void OnProgress(FileProgressHandler handler);

    // Chunks of utilities in the scene file that was opened last, in its order. Those that nobody
    // took are kept until the scene is emptied, and each save writes them beside what the utility
    // writes itself.
    std::vector<UtilityChunksView> UtilityChunks() const;

    // Tells the plug-ins of something that this host does not do itself, such as notification 9 for
    // a kind of file that is no scene.
    void Announce(int code, void* callParam = nullptr);

    // Shows every message box from here on; an empty handler writes them to stderr.
    void OnMessageBox(MessageBoxHandler handler);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace headless
