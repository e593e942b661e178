#pragma once

// What an adaptor shows to a person: in the host's command panel, and as a box.
namespace TVL {

inline constexpr char kPanelUtility[] = "Tarvo Lumiset Util";  // the class that opens the panel

// Controls of the panel. The second is in no panel that is delivered; a button of that id, put
// there, attaches the Core or detaches it, and says by its text which of the two it does next.
inline constexpr int kStartButton = 1046;  // CoreInterface::ShowCore
inline constexpr int kAttachButton = 1074;
inline constexpr char kAttachText[] = "Attach";
inline constexpr char kDetachText[] = "Detach";

// The caption of the box that names the nodes of a file that no plug-in of the Core's has claimed.
inline constexpr char kGatherCaption[] = "Gather error";

}  // namespace TVL
