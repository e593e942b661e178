#pragma once

#include "host/utility_obj.h"
#include "platform/win32.h"
#include "tvl/xml_node.h"

// The page of the utility: a button that opens the Core, and, in a template that has one, a control
// that attaches and detaches it and says by its text which of the two it does next.
INT_PTR CALLBACK PanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// No effect if the window or the control is not there.
void ShowAttachState(HWND panel, const char* text);

// The utility in the command panel: a page with the button that opens the Core.
class TarvoUtilityObj final : public UtilityObj {
  public:
    void BeginEditParams(Interface* ip, IUtil* iu) override;
    void EndEditParams(Interface* ip, IUtil* iu) override;
    void SelectionSetChanged(Interface*, IUtil*) override {}
    void DeleteThis() override { delete this; }
    void SetStartupParam(HostString) override {}

  private:
    HWND panel = nullptr;  // the page while it is open
};

// The panel of options, which the Core draws: a text of the type "XMLFile" among the library's
// resources, read; an empty node if there is none.
XMLNode OptionsPanel();
