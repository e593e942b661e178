// drive PLUGIN CORE
// Presses the button of the first Core from a program, with nothing but the kit's headers.

#include <cstdio>
#include <string>

#include "headless/core_seat.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "tvl/panel.h"

int main(int, char** arguments) {
    headless::CoreSeat seat(arguments[2]);
    headless::Session session;
    std::string error = session.LoadPlugin(arguments[1]);
    session.Start();
    if (error.empty()) error = seat.WhyAbsent();
    session.OpenUtility(TVL::kPanelUtility);
    session.PressButton(TVL::kStartButton);
    const auto labels = session.UndoLabels();
    if (error.empty() && (labels.size() != 1 || labels[0] != "Bounce")) error = "nothing bounces";
    std::puts(error.empty() ? labels[0].c_str() : error.c_str());
    return error.empty() ? 0 : 1;
}
