#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "headless/hold/undo_stream.h"
#include "headless/ui/command_panel.h"
#include "host/gup.h"

namespace headless {
namespace {

using Tokens = std::vector<std::string>;

struct Running {
    std::map<std::string, int> variables;
};

// False: it could not be done.
using Action = bool (*)(const std::string& argument, Running& running);

bool ReadTaskMode(const std::string& name, Running& running) {
    running.variables[name] = ThePanel().TaskMode();
    return true;
}

bool SetTaskMode(const std::string& name, Running& running) {
    const auto variable = running.variables.find(name);
    if (variable == running.variables.end()) return false;
    ThePanel().SetTaskMode(variable->second);
    return true;
}

bool OpenUtility(const std::string& scriptName, Running&) {
    std::string className = scriptName;
    std::replace(className.begin(), className.end(), '_', ' ');
    return ThePanel().OpenUtility(className);
}

bool MaxUndo(const std::string&, Running&) {
    return UndoStream::Get().Undo();
}

constexpr char kArgument[] = "$";

// How a statement of a script looks, and what it does. Blanks of a class name are underscores.
struct Form {
    Tokens tokens;
    Action action;
};

std::span<const Form> Forms() {
    static const Form forms[] = {
        {{kArgument, "=", "getCommandPanelTaskMode", "(", ")"}, ReadTaskMode},
        {{"setCommandPanelTaskMode", "mode", ":", kArgument}, SetTaskMode},
        {{"UtilityPanel.OpenUtility", "'", kArgument, "'"}, OpenUtility},
        {{"max", "undo"}, MaxUndo},
    };
    return forms;
}

bool IsWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.';
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Words, and every other character that is not blank as a token of its own.
Tokens TokensOf(std::string_view text) {
    Tokens tokens;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i + 1;
        if (IsWordCharacter(text[i])) {
            while (end < text.size() && IsWordCharacter(text[end]))
                ++end;
        }
        if (!IsBlank(text[i])) tokens.emplace_back(text.substr(i, end - i));
        i = end;
    }
    return tokens;
}

// The argument, if the statement has this form.
std::optional<std::string> Match(const Tokens& form, const Tokens& statement) {
    if (form.size() != statement.size()) return std::nullopt;
    std::string argument;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] != kArgument && form[i] != statement[i]) return std::nullopt;
        if (form[i] != kArgument) continue;
        if (!IsWordCharacter(statement[i].front())) return std::nullopt;
        argument = statement[i];
    }
    return argument;
}

struct Statement {
    Action action;
    std::string argument;
};

std::optional<Statement> Understand(const Tokens& tokens) {
    for (const Form& form : Forms()) {
        if (auto argument = Match(form.tokens, tokens)) return Statement{form.action, *argument};
    }
    return std::nullopt;
}

// Empty if there is anything that is not understood.
std::vector<Statement> Parse(std::string_view text) {
    std::vector<Statement> statements;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        const Tokens tokens = TokensOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (tokens.empty()) continue;
        const std::optional<Statement> statement = Understand(tokens);
        if (!statement) return {};
        statements.push_back(*statement);
    }
    return statements;
}

// Statements with `;` between them. Nothing runs unless the whole text is understood. True: all ran
// and had their effect.
bool RunScript(std::string_view text) {
    const std::vector<Statement> statements = Parse(text);
    Running running;
    for (const auto& [action, argument] : statements) {
        if (!action(argument, running)) return false;
    }
    return !statements.empty();
}

}  // namespace
}  // namespace headless

int GUP::ExecuteStringScript(const char* text, int*) {
    return text && headless::RunScript(text) ? 1 : 0;
}
