#pragma once

namespace headless {

// A small typeface of dots, 5 wide and 9 high, the lowest two rows for what hangs below the line.
inline constexpr int kLetterWidth = 5;
inline constexpr int kLetterHeight = 9;

// Whether there is ink in a column and row of a letter, counted from the upper left. All bytes but
// the printable ones of ASCII look alike.
bool LetterHasInk(char letter, int column, int row);

}  // namespace headless
