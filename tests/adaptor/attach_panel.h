#pragma once

#include "adaptor/panel.h"
#include "adaptor/utility_manager.h"
#include "resources/resource_ids.h"

// A page with the control that attaches and detaches, in the place of the utility's own.
class AttachPanel {
  public:
    AttachPanel()
        : window_(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(kTemplate),
                                     GetCOREInterface()->GetMAXHWnd(), PanelDlgProc, 0)),
          outer_(std::exchange(UtilityManager::Get().panelWindow, window_)) {}
    ~AttachPanel() {
        UtilityManager::Get().panelWindow = outer_;
        DestroyWindow(window_);
    }
    AttachPanel(const AttachPanel&) = delete;
    AttachPanel& operator=(const AttachPanel&) = delete;

    HWND Control() const { return GetDlgItem(window_, TVL::kAttachButton); }
    void Press() const { SendMessageA(Control(), BM_CLICK, 0, 0); }
    std::string Text() const {
        std::array<char, 64> text{};
        GetWindowTextA(Control(), text.data(), 64);
        return text.data();
    }

  private:
    static constexpr int kTemplate = 200;

    HWND window_;
    HWND outer_;
};
