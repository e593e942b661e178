#include "platform/tools/script_parser.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "platform/tools/script_error.h"

namespace {

// The system's numbers for the styles that scripts name.
constexpr std::uint32_t kChild = 0x40000000;
constexpr std::uint32_t kVisible = 0x10000000;
constexpr std::uint32_t kBorder = 0x00800000;
constexpr std::uint32_t kGroup = 0x00020000;
constexpr std::uint32_t kTabStop = 0x00010000;
constexpr std::uint32_t kDefaultButton = 1;
constexpr std::uint32_t kAutomaticCheckBox = 3;

const std::map<std::string, std::uint32_t> kStyles = {
    {"WS_POPUP", 0x80000000},
    {"WS_CHILD", kChild},
    {"WS_VISIBLE", kVisible},
    {"WS_DISABLED", 0x08000000},
    {"WS_CAPTION", 0x00C00000},
    {"WS_BORDER", kBorder},
    {"WS_GROUP", kGroup},
    {"WS_TABSTOP", kTabStop},
    {"DS_SETFONT", 0x40},
    {"DS_SHELLFONT", 0x48},
    {"DS_MODALFRAME", 0x80},
    {"DS_CONTROL", 0x400},
    {"BS_PUSHBUTTON", 0},
    {"BS_DEFPUSHBUTTON", kDefaultButton},
    {"BS_AUTOCHECKBOX", kAutomaticCheckBox},
    {"SS_LEFT", 0},
    {"ES_AUTOHSCROLL", 0x80},
};

// A statement that makes a control, and the class and style that it stands for.
struct ControlStatement {
    const char* windowClass;
    std::uint32_t style;
    bool hasText;
};

const std::map<std::string, ControlStatement> kControls = {
    {"PUSHBUTTON", {"Button", kTabStop, true}},
    {"DEFPUSHBUTTON", {"Button", kTabStop | kDefaultButton, true}},
    {"AUTOCHECKBOX", {"Button", kTabStop | kAutomaticCheckBox, true}},
    {"LTEXT", {"Static", kGroup, true}},
    {"EDITTEXT", {"Edit", kBorder | kTabStop, false}},
};

class Parser {
  public:
    explicit Parser(const TokenizedScript& script) : tokens_(script.tokens) {}

    ResourceScript Run() {
        while (next_ < tokens_.size())
            Resource();
        return std::move(script_);
    }

  private:
    [[noreturn]] static void Fail(const Token& token, const std::string& message) {
        throw ScriptError(token.file, token.line, message);
    }

    bool IsNext(Token::Kind kind, const std::string& text) const {
        return next_ < tokens_.size() && tokens_[next_].kind == kind && tokens_[next_].text == text;
    }

    bool TakeIf(Token::Kind kind, const std::string& text) {
        const bool isNext = IsNext(kind, text);
        if (isNext) ++next_;
        return isNext;
    }

    const Token& Take(Token::Kind kind, const std::string& what) {
        if (next_ == tokens_.size()) Fail(tokens_.back(), "the script ends before " + what);
        const Token& token = tokens_[next_++];
        if (token.kind != kind) Fail(token, "'" + token.text + "' where " + what + " should be");
        return token;
    }

    long TakeNumber(const std::string& what) { return Take(Token::Kind::Number, what).number; }
    std::string TakeText(const std::string& what) { return Take(Token::Kind::Text, what).text; }

    void TakeComma() {
        if (TakeIf(Token::Kind::Sign, ",")) return;
        const Token& token = tokens_[std::min(next_, tokens_.size() - 1)];
        Fail(token, "a comma is missing before '" + token.text + "'");
    }

    void Resource() {
        const long id = TakeNumber("a resource's number");
        const Token& type = Take(Token::Kind::Word, "a resource's type");
        if (type.text == "DIALOG" || type.text == "DIALOGEX") {
            Dialog(id);
        } else {
            Data(id, type);
        }
    }

    void Data(long id, const Token& type) {
        const auto folder = std::filesystem::path(type.file).parent_path();
        const std::string file = (folder / TakeText("a resource's file")).string();
        script_.data.push_back({id, type.text, file, type.line});
    }

    void Dialog(long id) {
        DialogDescription dialog;
        dialog.id = id;
        dialog.area = TakeArea();
        while (!IsBlockStart())
            DialogStatement(dialog);
        ++next_;
        while (!IsNext(Token::Kind::Word, "END") && !IsNext(Token::Kind::Sign, "}")) {
            dialog.controls.push_back(Control());
        }
        ++next_;
        script_.dialogs.push_back(std::move(dialog));
    }

    bool IsBlockStart() const {
        return IsNext(Token::Kind::Word, "BEGIN") || IsNext(Token::Kind::Sign, "{");
    }

    void DialogStatement(DialogDescription& dialog) {
        const Token& statement = Take(Token::Kind::Word, "a dialog's statement");
        if (statement.text == "STYLE") {
            dialog.style = TakeStyle(0);
        } else if (statement.text == "EXSTYLE") {
            TakeStyle(0);
        } else if (statement.text == "CAPTION") {
            dialog.caption = TakeText("a caption");
        } else if (statement.text == "FONT") {
            Font();
        } else {
            Fail(statement, "unknown statement '" + statement.text + "'");
        }
    }

    // A font's size, name and finer points matter on Windows alone: nothing is drawn elsewhere.
    void Font() {
        TakeNumber("a font's size");
        TakeComma();
        TakeText("a font's name");
        while (TakeIf(Token::Kind::Sign, ","))
            TakeNumber("a font's property");
    }

    Area TakeArea() {
        Area area;
        area.x = TakeNumber("a position");
        TakeComma();
        area.y = TakeNumber("a position");
        TakeComma();
        area.width = TakeNumber("a width");
        TakeComma();
        area.height = TakeNumber("a height");
        return area;
    }

    // Styles joined by '|', on top of those that are there; NOT takes one away.
    std::uint32_t TakeStyle(std::uint32_t style) {
        do {
            const bool removes = TakeIf(Token::Kind::Word, "NOT");
            const std::uint32_t part = TakeOneStyle();
            style = removes ? style & ~part : style | part;
        } while (TakeIf(Token::Kind::Sign, "|"));
        return style;
    }

    std::uint32_t TakeOneStyle() {
        if (next_ < tokens_.size() && tokens_[next_].kind == Token::Kind::Number) {
            return static_cast<std::uint32_t>(tokens_[next_++].number);
        }
        const Token& word = Take(Token::Kind::Word, "a style");
        const auto style = kStyles.find(word.text);
        if (style == kStyles.end()) Fail(word, "unknown style '" + word.text + "'");
        return style->second;
    }

    ControlDescription Control() {
        const Token& statement = Take(Token::Kind::Word, "a control");
        if (statement.text == "CONTROL") return GeneralControl();
        const auto known = kControls.find(statement.text);
        if (known == kControls.end()) Fail(statement, "unknown control '" + statement.text + "'");
        ControlDescription control;
        control.windowClass = known->second.windowClass;
        if (known->second.hasText) {
            control.text = TakeText("a control's text");
            TakeComma();
        }
        control.id = TakeNumber("a control's number");
        TakeComma();
        control.area = TakeArea();
        control.style = known->second.style | kChild | kVisible;
        if (TakeIf(Token::Kind::Sign, ",")) control.style = TakeStyle(control.style);
        return control;
    }

    // CONTROL text, id, class, style, area
    ControlDescription GeneralControl() {
        ControlDescription control;
        control.text = TakeText("a control's text");
        TakeComma();
        control.id = TakeNumber("a control's number");
        TakeComma();
        control.windowClass = TakeText("a control's class");
        TakeComma();
        control.style = TakeStyle(kChild | kVisible);
        TakeComma();
        control.area = TakeArea();
        return control;
    }

    const std::vector<Token>& tokens_;
    std::size_t next_ = 0;
    ResourceScript script_;
};

}  // namespace

ResourceScript ParseScript(const TokenizedScript& script) {
    return Parser(script).Run();
}
