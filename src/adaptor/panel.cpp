#include "adaptor/panel.h"

#include <array>
#include <string_view>

#include "adaptor/utility_manager.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "host/interface.h"
#include "resources/resource_ids.h"
#include "scene_state/node_tags.h"
#include "tvl/panel.h"

namespace {

constexpr const char* kPanelCaption = "Tarvo Lumiset";
constexpr const char* kNoCore =
    "Unable to bind Core routines. Tarvo Lumiset is unable to start.\n"
    "Please re-install the software and contact Tarvo Works in case the problem persists.";

constexpr int kTextCapacity = 1024;  // bytes

void OpenCore() {
    if (CoreInterface* const core = AttachedCore()) {
        const HWND mainWindow = GetCOREInterface()->GetMAXHWnd();
        CallCore("ShowCore", [&] { core->ShowCore(mainWindow); });
    } else {
        MessageBoxA(nullptr, kNoCore, kPanelCaption, MB_OK | MB_ICONERROR);
    }
}

bool SaysDetach(HWND panel) {
    std::array<char, kTextCapacity> text{};
    GetWindowTextA(GetDlgItem(panel, TVL::kAttachButton), text.data(), kTextCapacity);
    return std::string_view(text.data()) == TVL::kDetachText;
}

// The state stays in the tags, for the next attach.
void Detach(UtilityManager& manager) {
    StoreStateForNextCore();
    manager.DetachCore();
    GetCOREInterface()->FlushUndoBuffer();
}

// Also brings up what a start without a Core left out.
void Attach(UtilityManager& manager) {
    GetCOREInterface()->FlushUndoBuffer();
    manager.AttachCore();
    if (!AttachedCore()) return;
    manager.HearHost();
    GatherSceneState();
}

void OnCommand(UtilityManager& manager, HWND panel, int control) {
    if (control == TVL::kStartButton) {
        OpenCore();
    } else if (control == TVL::kAttachButton && !manager.IsCoreInPassage()) {
        SaysDetach(panel) ? Detach(manager) : Attach(manager);
    }
}

constexpr const char* kXmlType = "XMLFile";

// All bytes of the resource are its text.
XMLNode LoadXMLResource(std::uint16_t id) {
    const HMODULE module = theModule;
    const HRSRC resource = FindResourceA(module, MAKEINTRESOURCEA(id), kXmlType);
    const DWORD size = resource ? SizeofResource(module, resource) : 0;
    const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* const bytes = loaded ? LockResource(loaded) : nullptr;
    return XMLNode(bytes ? std::string_view(static_cast<const char*>(bytes), size) : "");
}

}  // namespace

void ShowAttachState(HWND panel, const char* text) {
    SetWindowTextA(GetDlgItem(panel, TVL::kAttachButton), text);
}

// The init message comes before the UtilityManager knows its window.
INT_PTR CALLBACK PanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM) {
    UtilityManager& manager = UtilityManager::Get();
    switch (message) {
        case WM_INITDIALOG:
            ShowAttachState(window, manager.link.core ? TVL::kDetachText : TVL::kAttachText);
            ShowWindow(window, SW_SHOW);
            return TRUE;
        case WM_COMMAND: {
            const TraceAfter trace;
            TVL::TraceIfThrown("a press of the panel",
                               [&] { OnCommand(manager, window, LOWORD(wParam)); });
            return FALSE;
        }
        default:
            return FALSE;
    }
}

void TarvoUtilityObj::BeginEditParams(Interface* ip, IUtil*) {
    if (panel) return;
    panel = ip->AddRollupPage(theModule, MAKEINTRESOURCEA(PanelDialog), PanelDlgProc,
                              "Tarvo Lumiset", 0, 0, PageCategory);
    UtilityManager::Get().panelWindow = panel;
}

void TarvoUtilityObj::EndEditParams(Interface* ip, IUtil*) {
    if (panel) ip->DeleteRollupPage(panel);
    panel = nullptr;
    UtilityManager::Get().panelWindow = nullptr;
}

XMLNode OptionsPanel() {
    return LoadXMLResource(OptionPanel);
}
