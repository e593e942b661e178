#pragma once

#include <cstdint>

// The keyboard, which the Core asks for and gives back. While it has it, the host's accelerators
// are off. Calls nest; one RestoreFocus too many has to be made up for by a RequestFocus.
struct FocusState {
    std::int32_t focusCount = 0;  // depth of RequestFocus calls
};

void RequestFocus(FocusState& focus);
void RestoreFocus(FocusState& focus);

// Gives the keyboard back whatever the depth; false if nobody had it.
bool TakeFocusBack(FocusState& focus);
