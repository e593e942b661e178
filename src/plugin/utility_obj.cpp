#include "plugin/utility_obj.h"

#include "adaptor/panel.h"
#include "adaptor/utility_manager.h"
#include "resources/resource_ids.h"

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
