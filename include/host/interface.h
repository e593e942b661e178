#pragma once

#include <cstdint>

#include "host/host_api.h"
#include "host/interval.h"
#include "host/node.h"
#include "host/object.h"
#include "host/time.h"
#include "platform/win32.h"

// Tasks of the command panel.
inline constexpr int TASK_MODE_CREATE = 1;
inline constexpr int TASK_MODE_MODIFY = 2;
inline constexpr int TASK_MODE_HIERARCHY = 3;
inline constexpr int TASK_MODE_MOTION = 4;
inline constexpr int TASK_MODE_DISPLAY = 5;
inline constexpr int TASK_MODE_UTILITY = 6;

// What edits parameters puts its pages into.
class HOST_API IObjParam {
  public:
    virtual ~IObjParam();

    // A page made from a dialog of `instance`'s resources; null if there is no such dialog. The
    // dialog procedure gets `parameter` with its init message.
    virtual HWND AddRollupPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure,
                               const char* title, LPARAM parameter = 0, std::uint32_t flags = 0,
                               int category = 4000) = 0;
    virtual void DeleteRollupPage(HWND page) = 0;
    virtual void SetCommandPanelTaskMode(int mode) = 0;
    virtual int GetCommandPanelTaskMode() = 0;
};

enum CloneType { NODE_COPY = 0 };

// What to do where a merged node or material bears a name of the scene's, and whether merged nodes
// look for their parents in the scene.
inline constexpr int MERGE_DUPS_PROMPT = 0;
inline constexpr int MERGE_DUP_MTL_PROMPT = 0;
inline constexpr int MERGE_REPARENT_PROMPT = 0;

class NameTab;

// The host, for its plug-ins.
class HOST_API Interface : public IObjParam {
  public:
    virtual HWND GetMAXHWnd() = 0;

    virtual TimeValue GetTime() = 0;
    virtual void SetTime(TimeValue t, bool redraw = true) = 0;
    virtual Interval GetAnimRange() = 0;
    virtual void SetAnimRange(Interval range) = 0;
    virtual void RegisterTimeChangeCallback(TimeChangeCallback* callback) = 0;
    virtual void UnRegisterTimeChangeCallback(TimeChangeCallback* callback) = 0;

    virtual void FlushUndoBuffer() = 0;
    virtual void ForceCompleteRedraw(bool disabledToo = false) = 0;
    virtual void EnableAccelerators() = 0;
    virtual void DisableAccelerators() = 0;
    virtual void EnableAnimateButton(int enable) = 0;

    virtual INode* GetRootNode() = 0;
    virtual INode* GetINodeByHandle(std::uint32_t handle) = 0;  // null: no such node in the scene

    virtual int GetSelNodeCount() = 0;
    virtual INode* GetSelNode(int index) = 0;
    virtual void SelectNode(INode* node, int clearSelection = 1) = 0;
    virtual void ClearNodeSelection(int redraw = 1) = 0;
    virtual void SelectNodeTab(INodeTab& nodes, int select, int redraw = 1) = 0;

    // A new object of a registered class, the plug-ins' or the host's own; null if there is none.
    virtual void* CreateInstance(SClass_ID superClass, Class_ID classId) = 0;
    virtual CameraObject* CreateCameraObject(int type) = 0;  // 0: the free camera
    virtual INode* CreateObjectNode(Object* object) = 0;

    // Children of a deleted node move up to its parent.
    virtual void DeleteNode(INode* node, int redraw = 1, int overrideSlaves = 0) = 0;

    // Either result table may be null; entry i of one belongs to entry i of the other.
    virtual bool CloneNodes(INodeTab& nodes, const Point3& offset, bool expandHierarchies,
                            CloneType type, INodeTab* resultSource, INodeTab* resultTarget) = 0;

    // Adds the nodes of another scene file, selects nothing but them if that is wanted, and tells
    // of it with NOTIFY_FILE_POST_MERGE. 0: there is no such file; throws if it is damaged. The
    // stand-in host merges everything, whatever is chosen by `mergeAll` and `mergeList`; asked what
    // to do with duplicates, it keeps both, and leaves merged nodes under their own parents.
    virtual int MergeFromFile(const char* path, int mergeAll = 0, int selectMerged = 0,
                              int refresh = 1, int duplicateAction = MERGE_DUPS_PROMPT,
                              NameTab* mergeList = nullptr,
                              int duplicateMaterialAction = MERGE_DUP_MTL_PROMPT,
                              int reparentAction = MERGE_REPARENT_PROMPT) = 0;
};

HOST_API Interface* GetCOREInterface();
