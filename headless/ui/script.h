#pragma once

#include <string_view>

namespace headless {

// Runs a script: statements with `;` between them, of these kinds.
//
//     NAME = getCommandPanelTaskMode()
//     setCommandPanelTaskMode mode:NAME
//     UtilityPanel.OpenUtility 'CLASS_NAME'      blanks of the name as underscores
//     max undo
//
// Nothing runs unless the whole text is understood. True: all statements ran and had their effect.
bool RunScript(std::string_view text);

}  // namespace headless
