#include <cstddef>
#include <utility>
#include <vector>

#include "headless/breaches/breach_book.h"
#include "headless/classes/class_registry.h"
#include "headless/hold/undo_stream.h"
#include "headless/objects/own_classes.h"
#include "headless/scene/node_cloning.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
#include "headless/scene/time_and_units.h"
#include "headless/session/scene_files.h"
#include "headless/ui/command_panel.h"
#include "headless/ui/main_window.h"
#include "host/interface.h"

IObjParam::~IObjParam() = default;

namespace headless {
namespace {

// A module's pointer as a node of the scene; null if it is none.
SceneNode* NodeOf(INode* node, const char* call) {
    if (TheScene().Contains(node)) return static_cast<SceneNode*>(node);
    if (node) Book(kGone, call);
    return nullptr;
}

// Those of a module's table that are nodes of the scene.
std::vector<SceneNode*> NodesOf(INodeTab& table, const char* call) {
    std::vector<SceneNode*> nodes;
    for (int i = 0; i < table.Count(); ++i) {
        if (SceneNode* const node = NodeOf(table[i], call)) nodes.push_back(node);
    }
    return nodes;
}

// The host as its plug-ins see it: forwards to the rooms that do the work.
class HostInterface final : public Interface {
  public:
    HWND AddRollupPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure,
                       const char* title, LPARAM parameter, std::uint32_t, int) override {
        return AddPage(instance, dialogTemplate, procedure, title, parameter);
    }
    void DeleteRollupPage(HWND page) override { DeletePage(page); }
    void SetCommandPanelTaskMode(int mode) override { ThePanel().SetTaskMode(mode); }
    int GetCommandPanelTaskMode() override { return ThePanel().TaskMode(); }

    HWND GetMAXHWnd() override { return MainWindow(); }

    TimeValue GetTime() override { return CurrentTime(); }
    void SetTime(TimeValue t, bool) override { MoveTime(t); }
    Interval GetAnimRange() override { return AnimationRange(); }
    void SetAnimRange(Interval range) override { SetAnimationRange(range); }
    void RegisterTimeChangeCallback(TimeChangeCallback* callback) override {
        AddTimeCallback(callback);
    }
    void UnRegisterTimeChangeCallback(TimeChangeCallback* callback) override {
        RemoveTimeCallback(callback);
    }

    void FlushUndoBuffer() override { UndoStream::Get().Flush(); }
    void ForceCompleteRedraw(bool) override {}  // nothing is drawn that could be drawn again
    void EnableAccelerators() override { EnableHostAccelerators(); }
    void DisableAccelerators() override { DisableHostAccelerators(); }
    void EnableAnimateButton(int enable) override { EnableHostAnimateButton(enable != 0); }

    INode* GetRootNode() override { return TheScene().Root(); }
    INode* GetINodeByHandle(std::uint32_t handle) override { return TheScene().Find(handle); }

    int GetSelNodeCount() override { return static_cast<int>(SelectedNodes().size()); }
    INode* GetSelNode(int index) override {
        if (index < 0 || index >= GetSelNodeCount()) return nullptr;
        return SelectedNodes()[static_cast<std::size_t>(index)];
    }
    void SelectNode(INode* node, int clearSelection) override {
        if (SceneNode* const known = NodeOf(node, "SelectNode"))
            SelectNodes({known}, clearSelection != 0);
    }
    void ClearNodeSelection(int) override { ClearSelection(); }
    void SelectNodeTab(INodeTab& nodes, int select, int) override {
        const std::vector<SceneNode*> known = NodesOf(nodes, "SelectNodeTab");
        if (select != 0)
            SelectNodes(known, false);
        else
            DeselectNodes(known);
    }

    void* CreateInstance(SClass_ID superClass, Class_ID classId) override {
        ClassDesc* descriptor = TheClasses().Find(superClass, classId);
        return descriptor ? descriptor->Create() : nullptr;
    }
    CameraObject* CreateCameraObject(int type) override {
        return type == 0 ? NewFreeCamera() : nullptr;
    }
    INode* CreateObjectNode(Object* object) override { return TheScene().CreateObjectNode(object); }
    void DeleteNode(INode* node, int, int) override {
        if (SceneNode* const known = NodeOf(node, "DeleteNode")) TheScene().Delete(*known);
    }

    bool CloneNodes(INodeTab& nodes, const Point3& offset, bool expandHierarchies, CloneType,
                    INodeTab* resultSource, INodeTab* resultTarget) override {
        const std::vector<SceneNode*> known = NodesOf(nodes, "CloneNodes");
        if (resultSource) resultSource->ZeroCount();
        if (resultTarget) resultTarget->ZeroCount();
        std::vector<NodeCopy> copies = CopyNodes(known, offset, expandHierarchies);
        try {
            for (const NodeCopy& copy : copies) {
                INode* const source = copy.source;
                INode* const target = copy.target;
                if (resultSource) resultSource->Append(1, &source);
                if (resultTarget) resultTarget->Append(1, &target);
            }
        } catch (...) {
            DeleteCopies(std::move(copies));
            throw;
        }
        return !copies.empty();
    }

    int MergeFromFile(const char* path, int, int selectMerged, int, int, NameTab*, int,
                      int) override {
        return path && MergeOrThrow(path, selectMerged != 0) ? 1 : 0;
    }
};

constinit HostInterface host;

}  // namespace
}  // namespace headless

Interface* GetCOREInterface() {
    headless::ExpectHost("GetCOREInterface");
    return &headless::host;
}
