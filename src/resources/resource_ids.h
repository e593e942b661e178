#pragma once

// The library's resources and controls by their numbers. The resource script sees the definitions,
// C++ the typed names.

#define IDD_CONVERT 145
#define IDD_PANEL 147
#define IDR_OPTION_PANEL 152

#define IDC_START 1046
#define IDC_CONVERT 1057
#define IDC_ATTACH 1074

#ifndef RC_INVOKED

#include "platform/win32.h"
#include "tvl/panel.h"

// The module whose resources they are, as its entry point was told; null before that.
inline HINSTANCE theModule = nullptr;

inline constexpr int ConvertDialog = IDD_CONVERT;
inline constexpr int PanelDialog = IDD_PANEL;
inline constexpr int OptionPanel = IDR_OPTION_PANEL;

inline constexpr int ConvertButton = IDC_CONVERT;

// What drives the panel from outside knows these two; the second is in no template so far.
static_assert(IDC_START == TVL::kStartButton && IDC_ATTACH == TVL::kAttachButton);

// Where the host places this library's pages among others.
inline constexpr int PageCategory = 4000;

#endif
