#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "headless/hold/undo_stream.h"
#include "headless/ui/command_panel.h"
#include "host/gup.h"

namespace headless {
namespace {

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

// What stands around the one argument of a statement, without blanks, and what it does. Blanks of a
// class name are underscores.
struct Form {
    std::string_view before;
    std::string_view behind;
    Action action;
};
constexpr Form kForms[] = {
    {"", "=getCommandPanelTaskMode()", ReadTaskMode},
    {"setCommandPanelTaskModemode:", "", SetTaskMode},
    {"UtilityPanel.OpenUtility'", "'", OpenUtility},
    {"maxundo", "", MaxUndo},
};

bool IsNoWordCharacter(unsigned char c) {
    return std::isalnum(c) == 0 && c != '_' && c != '.';
}

struct Statement {
    Action action;
    std::string argument;
};

std::optional<Statement> Understand(std::string text) {
    std::erase_if(text, [](unsigned char c) { return std::isspace(c) != 0; });
    for (const Form& form : kForms) {
        const std::size_t around = form.before.size() + form.behind.size();
        if (text.size() < around || !text.starts_with(form.before) || !text.ends_with(form.behind))
            continue;
        std::string argument = text.substr(form.before.size(), text.size() - around);
        if (argument.empty() == (form.action == MaxUndo) &&
            std::ranges::none_of(argument, IsNoWordCharacter))
            return Statement{form.action, std::move(argument)};
    }
    return std::nullopt;
}

// Empty if there is anything that is not understood.
std::vector<Statement> Parse(std::string_view text) {
    std::vector<Statement> statements;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        const std::string_view one = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (one.find_first_not_of(" \t\r\n") == std::string_view::npos) continue;
        const std::optional<Statement> statement = Understand(std::string(one));
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
