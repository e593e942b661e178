#include <nlohmann/json.hpp>
#include <ostream>

#include "command/output.h"
#include "command/run.h"
#include "command/stage_recorder.h"
#include "command/written_files.h"

// What came of a run, for a person and for a program.
namespace headless {
namespace {

using Json = nlohmann::ordered_json;
using headless::JsonOf;

void PrintNews(std::ostream& out, const StageNews& news, const char* indent) {
    PrintEach(out, indent + std::string(kMessageBox), news.boxes);
    PrintEach(out, indent + std::string(kComplaint), news.complaints);
    PrintEach(out, indent + std::string(kComplaint), news.breaches);
}

void PrintOption(std::ostream& out, const OptionView& option) {
    out << "Option " << option.id << ' ' << Quoted(option.name) << ": ";
    if (!option.isKnown)
        out << "the Core does not know it\n";
    else if (option.isButton)
        out << "press it by `option " << option.id << "`\n";
    else
        out << (option.value.value_or(false) ? "on\n" : "off\n");
}

void PrintWhatCanBePressed(std::ostream& out, const RunResult& result) {
    for (const PageView& page : result.pages) {
        out << "Page " << Quoted(page.title) << '\n';
        for (const ButtonView& button : page.buttons)
            out << "  Button " << button.controlId << ' ' << Quoted(button.text)
                << ": press it by `press " << button.controlId << "`\n";
    }
    for (const OptionView& option : result.options)
        PrintOption(out, option);
}

void PrintStart(std::ostream& out, const RunResult& result) {
    out << "Core: " << result.core << '\n';
    if (!result.scene.empty())
        out << result.scene << ": " << Counted(result.start.nodes, "node") << '\n';
    PrintNews(out, result.start.news, "");
    PrintWhatCanBePressed(out, result);
}

// What is otherwise than before the step.
void PrintChanges(std::ostream& out, const StepOutcome& before, const StepOutcome& step) {
    if (step.nodes != before.nodes) out << "; " << Counted(step.nodes, "node");
    if (step.undo == before.undo) return;
    out << "; "
        << (step.undo.empty() ? "nothing to undo" : "to undo: " + Quoted(step.undo.front()));
}

// Its end, behind "1. undo: ", which stands there while it is done: a Core can end the process.
void PrintEnd(std::ostream& out, const StepOutcome& before, const StepOutcome& step) {
    if (!step.error.empty())
        out << "failed: " << InTable(step.error);
    else
        out << (step.note.empty() ? "done" : step.note);
    PrintChanges(out, before, step);
    out << '\n';
    PrintNews(out, step.news, "  ");
}

Json JsonOf(const StepOutcome& step) {
    Json trace = Json::array();
    for (const TraceLine& line : step.news.trace)
        trace.push_back(ToText(line));
    return {{"step", step.step},
            {"ok", step.error.empty()},
            {"error", step.error},
            {"note", step.note},
            {"undo", step.undo},
            {"redo", step.redo},
            {"nodes", step.nodes},
            {"boxes", step.news.boxes},
            {"complaints", step.news.complaints},
            {"breaches", step.news.breaches},
            {"trace", trace}};
}

Json JsonOf(const PageView& page) {
    Json buttons = Json::array();
    for (const ButtonView& button : page.buttons)
        buttons.push_back({{"id", button.controlId}, {"text", button.text}});
    return {{"title", page.title}, {"buttons", buttons}};
}

// The value of a button, or of a switch that the Core does not know, is null.
Json JsonOf(const OptionView& option) {
    return {{"id", option.id},
            {"name", option.name},
            {"button", option.isButton},
            {"known", option.isKnown},
            {"value", option.value ? Json(*option.value) : Json()}};
}

template <class Entry>
Json Listed(const std::vector<Entry>& entries) {
    Json list = Json::array();
    for (const Entry& entry : entries)
        list.push_back(JsonOf(entry));
    return list;
}

}  // namespace

void PrintNewest(std::ostream& out, const RunResult& result) {
    const std::size_t count = result.steps.size();
    if (count == 0)
        PrintStart(out, result);
    else if (!result.steps.back().isOver)
        out << count << ". " << InTable(result.steps.back().step) << ": ";
    else
        PrintEnd(out, count == 1 ? result.start : result.steps[count - 2], result.steps.back());
    out.flush();
}

void PrintForPerson(std::ostream& out, const RunResult& result) {
    PrintNews(out, result.end.news, "");
    if (result.hostObjectsAlive > 0)
        out << "Left over after shutdown: " << Counted(result.hostObjectsAlive, "host object")
            << '\n';
    TellSaved(out);
    if (result.hasUnsavedChanges)
        out << "Not saved: " << (result.saved.empty() ? "the scene" : "what changed after that")
            << " (the step `save FILE` does)\n";
}

void PrintForProgram(std::ostream& out, const RunResult& result) {
    Json object = {{"core", result.core},
                   {"scene", result.scene},
                   {"start", JsonOf(result.start)},
                   {"steps", Listed(result.steps)},
                   {"end", JsonOf(result.end)},
                   {"saved", result.saved},
                   {"hostObjectsAlive", result.hostObjectsAlive}};
    if (result.findings) object["findings"] = Listed(*result.findings);
    if (result.steps.empty()) {
        object["utilities"] = result.utilities;
        object["pages"] = Listed(result.pages);
        object["options"] = Listed(result.options);
    }
    PrintJson(out, object);
}

}  // namespace headless
