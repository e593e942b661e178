#include "player/host_settings.h"

#include <locale>
#include <sstream>

#include "host/time.h"
#include "host/units.h"
#include "recorder/stream/notes.h"

namespace player {

std::string SettingsNote() {
    int unitType = 0;
    float unitScale = 1;
    GetMasterUnitInfo(&unitType, &unitScale);
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(9);  // as many as tell any two scales apart
    text << GetFrameRate() << ' ' << GetTicksPerFrame() << ' ' << unitType << ' ' << unitScale;
    return text.str();
}

headless::SessionSettings SettingsOf(const recorder::TapeSession& session) {
    for (const recorder::Record& record : session.records) {
        const auto [word, about] = recorder::NoteOf(record);
        if (word != recorder::note::kSettings) continue;
        std::istringstream text{std::string(about)};
        text.imbue(std::locale::classic());
        headless::SessionSettings settings;
        text >> settings.frameRate >> settings.ticksPerFrame >> settings.unitType >>
            settings.unitScale;
        return text ? settings : headless::SessionSettings();
    }
    return {};
}

}  // namespace player
