#pragma once

#include "host/utility_obj.h"
#include "platform/win32.h"

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
