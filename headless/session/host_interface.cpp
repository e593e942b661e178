#include "headless/session/host_interface.h"

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
#include "headless/scene/timeline.h"
#include "headless/session/scene_files.h"
#include "headless/ui/command_panel.h"
#include "headless/ui/main_window.h"
#include "headless/ui/rollup_pages.h"
#include "host/custom_controls.h"

IObjParam::~IObjParam() = default;

Interface* GetCOREInterface() {
    static headless::HostInterface host;
    headless::ExpectHost("GetCOREInterface");
    return &host;
}

// The system's buttons are all that this host's dialogs are made of.
void InitCustomControls(HINSTANCE) {}

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

}  // namespace

HWND HostInterface::AddRollupPage(HINSTANCE instance, const char* dialogTemplate, DLGPROC procedure,
                                  const char* title, LPARAM parameter, std::uint32_t, int) {
    return AddPage(instance, dialogTemplate, procedure, title, parameter);
}

void HostInterface::DeleteRollupPage(HWND page) {
    DeletePage(page);
}

void HostInterface::SetCommandPanelTaskMode(int mode) {
    ThePanel().SetTaskMode(mode);
}

int HostInterface::GetCommandPanelTaskMode() {
    return ThePanel().TaskMode();
}

HWND HostInterface::GetMAXHWnd() {
    return MainWindow();
}

TimeValue HostInterface::GetTime() {
    return CurrentTime();
}

void HostInterface::SetTime(TimeValue t, bool) {
    MoveTime(t);
}

Interval HostInterface::GetAnimRange() {
    return AnimationRange();
}

void HostInterface::SetAnimRange(Interval range) {
    SetAnimationRange(range);
}

void HostInterface::RegisterTimeChangeCallback(TimeChangeCallback* callback) {
    AddTimeCallback(callback);
}

void HostInterface::UnRegisterTimeChangeCallback(TimeChangeCallback* callback) {
    RemoveTimeCallback(callback);
}

void HostInterface::FlushUndoBuffer() {
    UndoStream::Get().Flush();
}

// Nothing is drawn, so there is nothing to draw again.
void HostInterface::ForceCompleteRedraw(bool) {}

void HostInterface::EnableAccelerators() {
    EnableHostAccelerators();
}

void HostInterface::DisableAccelerators() {
    DisableHostAccelerators();
}

void HostInterface::EnableAnimateButton(int enable) {
    EnableHostAnimateButton(enable != 0);
}

INode* HostInterface::GetRootNode() {
    return TheScene().Root();
}

INode* HostInterface::GetINodeByHandle(std::uint32_t handle) {
    return TheScene().Find(handle);
}

int HostInterface::GetSelNodeCount() {
    return static_cast<int>(SelectedNodes().size());
}

INode* HostInterface::GetSelNode(int index) {
    if (index < 0 || index >= GetSelNodeCount()) return nullptr;
    return SelectedNodes()[static_cast<std::size_t>(index)];
}

void HostInterface::SelectNode(INode* node, int clearSelection) {
    if (SceneNode* const known = NodeOf(node, "SelectNode"))
        SelectNodes({known}, clearSelection != 0);
}

void HostInterface::ClearNodeSelection(int) {
    ClearSelection();
}

void HostInterface::SelectNodeTab(INodeTab& nodes, int select, int) {
    const std::vector<SceneNode*> known = NodesOf(nodes, "SelectNodeTab");
    if (select != 0)
        SelectNodes(known, false);
    else
        DeselectNodes(known);
}

void* HostInterface::CreateInstance(SClass_ID superClass, Class_ID classId) {
    ClassDesc* descriptor = TheClasses().Find(superClass, classId);
    return descriptor ? descriptor->Create() : nullptr;
}

CameraObject* HostInterface::CreateCameraObject(int type) {
    return type == 0 ? NewFreeCamera() : nullptr;
}

INode* HostInterface::CreateObjectNode(Object* object) {
    return TheScene().CreateObjectNode(object);
}

void HostInterface::DeleteNode(INode* node, int, int) {
    if (SceneNode* const known = NodeOf(node, "DeleteNode")) TheScene().Delete(*known);
}

bool HostInterface::CloneNodes(INodeTab& nodes, const Point3& offset, bool expandHierarchies,
                               CloneType, INodeTab* resultSource, INodeTab* resultTarget) {
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

int HostInterface::MergeFromFile(const char* path, int, int selectMerged, int, int, NameTab*, int,
                                 int) {
    return path && MergeOrThrow(path, selectMerged != 0) ? 1 : 0;
}

}  // namespace headless
