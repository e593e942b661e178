#include <algorithm>
#include <array>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/steps.h"
#include "tvl/panel.h"

// Steps on the Core and its panel.
namespace headless {
namespace {

// Whether a button, or an option, is the one that a word means.
bool IsMeant(const std::string& word, int id, const std::string& text) {
    return IsId(word) ? std::to_string(id) == word : text == word;
}

std::vector<ButtonView> ButtonsOf(const Session& host) {
    std::vector<ButtonView> buttons;
    for (const PageView& page : host.Pages())
        buttons.insert(buttons.end(), page.buttons.begin(), page.buttons.end());
    return buttons;
}

[[noreturn]] void RefuseButton(const std::vector<ButtonView>& buttons, const std::string& word) {
    std::string there;
    for (const ButtonView& button : buttons)
        (there += there.empty() ? "there are: " : ", ") +=
            std::to_string(button.controlId) + ' ' + Quoted(button.text);
    throw Failure("no page has a button " + (IsId(word) ? word : Quoted(word)) + " (" +
                  (there.empty() ? "no page is open" : there) + ')');
}

// No panel has this button, so that it is put there, with the text that says what it does next.
void PressAttachButton(StepScene& scene) {
    Session& host = scene.stage.Host();
    if (!host.IsUtilityOpen(TVL::kPanelUtility)) host.OpenUtility(TVL::kPanelUtility);
    const char* const text = scene.stage.HasCore() ? TVL::kDetachText : TVL::kAttachText;
    if (host.PressButton(TVL::kAttachButton)) return;
    if (!host.PlaceButton(TVL::kAttachButton, text))
        throw Failure(std::string("the panel \"") + TVL::kPanelUtility + "\" does not open");
    host.PressButton(TVL::kAttachButton);
}

std::string Attach(StepScene& scene, const StepWords&) {
    if (scene.stage.HasCore()) return "it is attached already";
    PressAttachButton(scene);
    scene.stage.NeedCore();
    return "attached";
}

void NeedAttached(StepScene& scene) {
    if (!scene.stage.HasCore())
        throw Failure("no Core is attached (" + scene.stage.Seat().WhyAbsent() + ')');
}

std::string Detach(StepScene& scene, const StepWords&) {
    NeedAttached(scene);
    PressAttachButton(scene);
    if (scene.stage.HasCore()) throw Failure("the Core is attached still");
    return "detached";
}

std::string Press(StepScene& scene, const StepWords& words) {
    const std::string& word = words.texts.front();
    Session& host = scene.stage.Host();
    const std::vector<ButtonView> buttons = ButtonsOf(host);
    const auto button = std::ranges::find_if(
        buttons, [&](const ButtonView& each) { return IsMeant(word, each.controlId, each.text); });
    if (button == buttons.end()) RefuseButton(buttons, word);
    IsId(word) ? host.PressButton(button->controlId) : host.PressButton(button->text);
    return "pressed " + Quoted(button->text);
}

std::string PressOption(StepScene& scene, const StepWords& words) {
    const std::string& word = words.texts.front();
    NeedAttached(scene);
    CoreSeat& seat = scene.stage.Seat();
    for (const OptionView& option : seat.Options()) {
        if (!IsMeant(word, option.id, option.name)) continue;
        if (!option.isButton) throw Failure(Quoted(option.name) + " is a switch, and no button");
        if (!OrRefuse([&] { return seat.Press(option.id); }))
            throw Failure("the Core has no node for this button");
        return "pressed " + Quoted(option.name);
    }
    throw Failure("there is no option " + (IsId(word) ? word : Quoted(word)));
}

std::string Convert(StepScene& scene, const StepWords&) {
    scene.stage.ConvertControllers();
    return "all controllers are the host's own";
}

constexpr auto kPanelSteps = std::to_array<StepKind>({
    {"attach", "", "Attach the Core, unless it is attached", &Attach},
    {"detach", "", "Detach the Core", &Detach},
    {"press", "ID", "Press the button of this number, or text, in the panel", &Press},
    {"option", "ID", "Press the Core's option of this number, or name", &PressOption},
    {"convert", "", "Turn all controllers into the host's own, by option 1028", &Convert},
});

}  // namespace

std::span<const StepKind> PanelSteps() {
    return kPanelSteps;
}

}  // namespace headless
