#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "platform/win32.h"

// A dialog as a library's resources hold it. Sizes and places are in dialog units.
struct ButtonTemplate {
    int id = 0;
    std::wstring text;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const ButtonTemplate&) const = default;
};

struct DialogTemplate {
    int id = 0;
    DWORD style = 0;
    int width = 0;
    int height = 0;
    std::wstring font;
    int points = 0;
    std::vector<ButtonTemplate> controls;  // one that is no push button has no text here

    bool operator==(const DialogTemplate&) const = default;
};

void PrintTo(const DialogTemplate& dialog, std::ostream* stream);

// Of the extended form, which the resource compiler makes of DIALOGEX. Empty if the module has none
// of that id, or one of another form.
DialogTemplate ReadDialog(HMODULE module, int id);
