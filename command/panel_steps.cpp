#include <algorithm>
#include <optional>

#include "command/conversion.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/step_acts.h"
#include "command/step_arguments.h"
#include "tvl/panel.h"

// Steps on the Core and its panel.
namespace headless {
namespace {

// Whether a button, or an option, is the one that a word means.
bool IsMeant(const std::string& word, int id, const std::string& text) {
    return IsId(word) ? std::to_string(id) == word : text == word;
}

std::optional<ButtonView> FindButton(const Session& host, const std::string& word) {
    for (const PageView& page : host.Pages())
        for (const ButtonView& button : page.buttons)
            if (IsMeant(word, button.controlId, button.text)) return button;
    return std::nullopt;
}

[[noreturn]] void RefuseButton(const Session& host, const std::string& word) {
    std::string there;
    for (const PageView& page : host.Pages())
        for (const ButtonView& button : page.buttons)
            (there += there.empty() ? "" : ", ") +=
                std::to_string(button.controlId) + ' ' + Quoted(button.text);
    throw Failure("no page has a button " + (IsId(word) ? word : Quoted(word)) + " (" +
                  (there.empty() ? "no page is open" : "there are: " + there) + ')');
}

// No panel has this button, so that it is put there, with the text that says what it does next.
void PressAttachButton(StepScene& scene) {
    Session& host = scene.stage.Host();
    if (!host.IsUtilityOpen(TVL::kPanelUtility)) host.OpenUtility(TVL::kPanelUtility);
    const char* const text = scene.stage.HasCore() ? TVL::kDetachText : TVL::kAttachText;
    if (!FindButton(host, std::to_string(TVL::kAttachButton)) &&
        !host.PlaceButton(TVL::kAttachButton, text))
        throw Failure(std::string("the panel \"") + TVL::kPanelUtility + "\" does not open");
    host.PressButton(TVL::kAttachButton);
}

std::string Attach(StepScene& scene) {
    if (scene.stage.HasCore()) return "it is attached already";
    PressAttachButton(scene);
    scene.stage.NeedCore();
    return "attached";
}

void NeedAttached(StepScene& scene) {
    if (!scene.stage.HasCore())
        throw Failure("no Core is attached (" + scene.stage.Seat().WhyAbsent() + ')');
}

std::string Detach(StepScene& scene) {
    NeedAttached(scene);
    PressAttachButton(scene);
    if (scene.stage.HasCore()) throw Failure("the Core is attached still");
    return "detached";
}

std::string Press(StepScene& scene, const std::string& word) {
    Session& host = scene.stage.Host();
    const std::optional<ButtonView> button = FindButton(host, word);
    if (!button) RefuseButton(host, word);
    if (IsId(word))
        host.PressButton(button->controlId);
    else
        host.PressButton(std::string_view(word));
    return "pressed " + Quoted(button->text);
}

std::string PressOption(StepScene& scene, const std::string& word) {
    NeedAttached(scene);
    CoreSeat& seat = scene.stage.Seat();
    for (const OptionView& option : seat.Options()) {
        if (!IsMeant(word, option.id, option.name)) continue;
        if (!option.isButton) throw Failure(Quoted(option.name) + " is a switch, and no button");
        if (!seat.Press(option.id)) throw Failure("the Core has no node for this button");
        return "pressed " + Quoted(option.name);
    }
    throw Failure("there is no option " + (IsId(word) ? word : Quoted(word)));
}

}  // namespace

StepAct MakeAttach(StepWords) {
    return &Attach;
}

StepAct MakeDetach(StepWords) {
    return &Detach;
}

StepAct MakePress(StepWords words) {
    if (IsId(words[0])) ReadId(words[0]);
    return [word = words[0]](StepScene& scene) { return Press(scene, word); };
}

StepAct MakeOption(StepWords words) {
    if (IsId(words[0])) ReadId(words[0]);
    return [word = words[0]](StepScene& scene) { return PressOption(scene, word); };
}

StepAct MakeConvert(StepWords) {
    return [](StepScene& scene) {
        ConvertControllers(scene.stage);
        return std::string("all controllers are the host's own");
    };
}

}  // namespace headless
