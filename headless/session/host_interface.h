#pragma once

#include "host/interface.h"

namespace headless {

// The host as its plug-ins see it: one-line forwards to the rooms that do the work.
class HostInterface final : public Interface {
  public:
    HWND AddRollupPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure,
                       const char* title, LPARAM parameter, std::uint32_t flags,
                       int category) override;
    void DeleteRollupPage(HWND page) override;
    void SetCommandPanelTaskMode(int mode) override;
    int GetCommandPanelTaskMode() override;

    HWND GetMAXHWnd() override;

    TimeValue GetTime() override;
    void SetTime(TimeValue t, bool redraw) override;
    Interval GetAnimRange() override;
    void SetAnimRange(Interval range) override;
    void RegisterTimeChangeCallback(TimeChangeCallback* callback) override;
    void UnRegisterTimeChangeCallback(TimeChangeCallback* callback) override;

    void FlushUndoBuffer() override;
    void ForceCompleteRedraw(bool disabledToo) override;
    void EnableAccelerators() override;
    void DisableAccelerators() override;
    void EnableAnimateButton(int enable) override;

    INode* GetRootNode() override;
    INode* GetINodeByHandle(std::uint32_t handle) override;

    int GetSelNodeCount() override;
    INode* GetSelNode(int index) override;
    void SelectNode(INode* node, int clearSelection) override;
    void ClearNodeSelection(int redraw) override;
    void SelectNodeTab(INodeTab& nodes, int select, int redraw) override;

    void* CreateInstance(SClass_ID superClass, Class_ID classId) override;
    CameraObject* CreateCameraObject(int type) override;
    INode* CreateObjectNode(Object* object) override;
    void DeleteNode(INode* node, int redraw, int overrideSlaves) override;
    bool CloneNodes(INodeTab& nodes, const Point3& offset, bool expandHierarchies, CloneType type,
                    INodeTab* resultSource, INodeTab* resultTarget) override;
    int MergeFromFile(const char* path, int mergeAll, int selectMerged, int refresh,
                      int duplicateAction, NameTab* mergeList, int duplicateMaterialAction,
                      int reparentAction) override;
};

}  // namespace headless
