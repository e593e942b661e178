#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "platform/platform_api.h"
#include "platform/win32.h"

// What a resource compiler makes of a script. Texts are given as UTF-8; bytes that end too early
// read as zeroes.
namespace platform {

// One resource of a .res file. A type or name that is a number n reads "#n".
struct Resource {
    std::string type;
    std::string name;
    std::span<const std::byte> data;  // within the file's bytes
};

std::vector<Resource> ReadResources(std::span<const std::byte> file);

inline constexpr char kDialogType[] = "#5";

// A window as it is to be made. Position and size are in dialog units, within the parent.
struct WindowTemplate {
    std::string windowClass;
    std::string text;
    DWORD style = 0;
    int id = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const WindowTemplate&) const = default;
};

struct DialogTemplate {
    WindowTemplate window;
    std::string font;
    int points = 0;
    std::vector<WindowTemplate> controls;

    bool operator==(const DialogTemplate&) const = default;
};

// Of the data of a dialog in the extended form, which is made of DIALOGEX; empty for another form.
PLATFORM_API DialogTemplate ReadDialog(std::span<const std::byte> data);

}  // namespace platform
