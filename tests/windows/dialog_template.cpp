#include "tests/windows/dialog_template.h"

#include <cstring>
#include <ostream>
#include <span>

// The layout is that of DLGTEMPLATEEX and DLGITEMTEMPLATEEX in the system's documentation: numbers
// of 16 and 32 bits, texts of 16-bit letters with a NUL, items at multiples of 4 bytes.
namespace {

constexpr WORD kExtended = 0xFFFF;  // the signature, and what stands before a number for a text
constexpr WORD kButtonClass = 0x0080;

class Reader {
  public:
    explicit Reader(std::span<const char> bytes) : bytes_(bytes) {}

    template <class Number>
    Number Read() {
        Number number{};
        if (at_ + sizeof number <= bytes_.size())
            std::memcpy(&number, bytes_.data() + at_, sizeof number);
        at_ += sizeof number;
        return number;
    }

    std::wstring ReadText() {
        std::wstring text;
        while (const WORD letter = Read<WORD>())
            text += static_cast<wchar_t>(letter);
        return text;
    }

    // A class, a menu or a title: a number, or 0 with the text given.
    WORD ReadNumberOrText(std::wstring& text) {
        const WORD first = Read<WORD>();
        if (first == kExtended) return Read<WORD>();
        at_ -= sizeof first;
        text = ReadText();
        return 0;
    }

    void Align() { at_ = (at_ + 3) & ~std::size_t{3}; }

  private:
    std::span<const char> bytes_;
    std::size_t at_ = 0;
};

ButtonTemplate ReadControl(Reader& reader) {
    reader.Align();
    reader.Read<DWORD>();  // help id
    reader.Read<DWORD>();  // extended style
    const auto style = reader.Read<DWORD>();
    ButtonTemplate control;
    control.x = reader.Read<short>();
    control.y = reader.Read<short>();
    control.width = reader.Read<short>();
    control.height = reader.Read<short>();
    control.id = static_cast<int>(reader.Read<DWORD>());
    std::wstring className;
    const WORD classNumber = reader.ReadNumberOrText(className);
    std::wstring title;
    reader.ReadNumberOrText(title);
    reader.Read<WORD>();  // bytes that the control's making gets; none
    const bool isPushButton = (classNumber == kButtonClass || className == L"Button") &&
                              (style & BS_TYPEMASK) == BS_PUSHBUTTON;
    if (isPushButton) control.text = title;
    return control;
}

std::span<const char> BytesOf(HMODULE module, int id) {
    const HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(id), MAKEINTRESOURCEA(5));
    if (!found) return {};
    const auto* const bytes = static_cast<const char*>(LockResource(LoadResource(module, found)));
    return {bytes, SizeofResource(module, found)};
}

}  // namespace

DialogTemplate ReadDialog(HMODULE module, int id) {
    Reader reader(BytesOf(module, id));
    DialogTemplate dialog;
    if (reader.Read<WORD>() != 1 || reader.Read<WORD>() != kExtended) return dialog;
    dialog.id = id;
    reader.Read<DWORD>();  // help id
    reader.Read<DWORD>();  // extended style
    dialog.style = reader.Read<DWORD>();
    const int controls = reader.Read<WORD>();
    reader.Read<short>();  // place
    reader.Read<short>();
    dialog.width = reader.Read<short>();
    dialog.height = reader.Read<short>();
    std::wstring unused;
    reader.ReadNumberOrText(unused);  // menu
    reader.ReadNumberOrText(unused);  // class
    reader.ReadText();                // title
    dialog.points = reader.Read<WORD>();
    reader.Read<WORD>();  // weight
    reader.Read<WORD>();  // italic and character set
    dialog.font = reader.ReadText();
    for (int control = 0; control < controls; ++control)
        dialog.controls.push_back(ReadControl(reader));
    return dialog;
}

void PrintTo(const DialogTemplate& dialog, std::ostream* stream) {
    const auto narrow = [](const std::wstring& text) {
        return std::string(text.begin(), text.end());
    };
    *stream << dialog.id << " style " << dialog.style << ", " << dialog.width << " by "
            << dialog.height << ", " << narrow(dialog.font) << ' ' << dialog.points;
    for (const ButtonTemplate& button : dialog.controls)
        *stream << "; " << button.id << " \"" << narrow(button.text) << "\" " << button.x << ' '
                << button.y << ' ' << button.width << ' ' << button.height;
}
