#include "platform/common/resources.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/common/text.h"

// The layouts are those of RESOURCEHEADER, DLGTEMPLATEEX and DLGITEMTEMPLATEEX in the system's
// documentation: little-endian numbers of 16 and 32 bits, texts of 16-bit letters with a NUL, parts
// at multiples of 4 bytes.
namespace platform {
namespace {

constexpr WORD kBeforeNumber = 0xFFFF;  // stands before a number in the place of a text
constexpr DWORD kHasFont = 0x40;        // DS_SETFONT

class ResourceReader {
  public:
    explicit ResourceReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    bool IsAtEnd() const { return at_ >= bytes_.size(); }
    WORD Word() { return static_cast<WORD>(Number(2)); }
    DWORD DoubleWord() { return Number(4); }
    int Signed() { return static_cast<std::int16_t>(Word()); }
    void Skip(std::size_t size) { at_ += size; }
    void Align() { at_ = (at_ + 3) & ~std::size_t{3}; }

    std::string Text() {
        const std::size_t start = at_;
        while (Word() != 0) {
        }
        const auto text = Within(start, at_ - start - sizeof(WORD));
        return Utf8FromUtf16LittleEndian({reinterpret_cast<const char*>(text.data()), text.size()});
    }

    std::string NumberOrText() {
        const std::size_t start = at_;
        if (Word() == kBeforeNumber) return '#' + std::to_string(Word());
        at_ = start;
        return Text();
    }

    // The next `size` bytes, or those of them that are there.
    std::span<const std::byte> Bytes(std::size_t size) {
        const auto taken = Within(at_, size);
        at_ += size;
        return taken;
    }

  private:
    std::span<const std::byte> Within(std::size_t start, std::size_t size) const {
        start = std::min(start, bytes_.size());
        return bytes_.subspan(start, std::min(size, bytes_.size() - start));
    }

    DWORD Number(std::size_t size) {
        DWORD number = 0;
        for (int shift = 0; const std::byte part : Bytes(size)) {
            number |= std::to_integer<DWORD>(part) << shift;
            shift += 8;
        }
        return number;
    }

    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
};

void ReadArea(ResourceReader& reader, WindowTemplate& window) {
    window.x = reader.Signed();
    window.y = reader.Signed();
    window.width = reader.Signed();
    window.height = reader.Signed();
}

std::string ClassName(const std::string& name) {
    constexpr std::array kSystemClasses{"Button", "Edit", "Static"};  // from number 0x80 on
    for (std::size_t i = 0; i < kSystemClasses.size(); ++i)
        if (name == '#' + std::to_string(0x80 + i)) return kSystemClasses[i];
    return name;
}

WindowTemplate ReadControl(ResourceReader& reader) {
    reader.Align();
    reader.Skip(8);  // help id, extended style
    WindowTemplate control;
    control.style = reader.DoubleWord();
    ReadArea(reader, control);
    control.id = static_cast<int>(reader.DoubleWord());
    control.windowClass = ClassName(reader.NumberOrText());
    control.text = reader.NumberOrText();
    reader.Skip(reader.Word());  // what the control's making would get
    return control;
}

}  // namespace

std::vector<Resource> ReadResources(std::span<const std::byte> file) {
    std::vector<Resource> resources;
    for (ResourceReader reader(file); !reader.IsAtEnd(); reader.Align()) {
        const DWORD size = reader.DoubleWord();
        reader.Skip(4);  // the header's size
        Resource resource{reader.NumberOrText(), reader.NumberOrText(), {}};
        reader.Align();
        reader.Skip(16);  // versions, flags, language
        resource.data = reader.Bytes(size);
        resources.push_back(std::move(resource));
    }
    return resources;
}

DialogTemplate ReadDialog(std::span<const std::byte> data) {
    ResourceReader reader(data);
    DialogTemplate dialog;
    if (reader.Word() != 1 || reader.Word() != kBeforeNumber) return dialog;
    reader.Skip(8);  // help id, extended style
    dialog.window.style = reader.DoubleWord();
    const int controls = reader.Word();
    ReadArea(reader, dialog.window);
    reader.NumberOrText();                 // menu
    reader.NumberOrText();                 // class
    dialog.window.windowClass = "#32770";  // the system's name for the class of dialogs
    dialog.window.text = reader.Text();
    if (dialog.window.style & kHasFont) {
        dialog.points = reader.Word();
        reader.Skip(4);  // weight, italic, character set
        dialog.font = reader.Text();
    }
    for (int control = 0; control < controls; ++control)
        dialog.controls.push_back(ReadControl(reader));
    return dialog;
}

}  // namespace platform
