#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "recorder/module/library.h"
#include "recorder/module/settings.h"
#include "recorder/recorder.h"
#include "recorder/watch/watch.h"

namespace recorder {

// The module's one state, from its first call until it is freed: the real Core, and what is written
// down of it. Whatever goes wrong with tape and watch is told in the report, a text file beside the
// tape, or beside the module where there is none or no file can be, and the Core works as without
// them.
class StandingBetween {
  public:
    // Reads the settings beside this module, and loads the Core that they name.
    StandingBetween();

    // The routines. That there is no real Core, or one of its routines is missing, is thrown.
    std::uint32_t GetVersion();
    CoreInterface* Attach(TVL::AdaptorInterface* adaptor);
    void Detach(CoreInterface* core);

  private:
    // All that writes down, which is there whole or not at all.
    struct Recording {
        Stream stream;
        std::unique_ptr<TapeWriter> tape;
        std::optional<Watch> watch;
        std::optional<Recorder> recorder;
    };

    void LoadCore();
    void BeginRecording();
    void Tell(const std::string& line) noexcept;
    void TellFindings() noexcept;
    std::ofstream OpenReport() const;
    template <class Type>
    Type& Routine(const char* name) const;

    std::filesystem::path module_;
    ModuleSettings settings_;
    std::filesystem::path report_;
    std::string whyNoCore_;

    // What was lent by the Core ends before its library is freed.
    Library core_;
    std::unique_ptr<Recording> recording_;  // null if nothing is to be written down
    bool hasToldStop_ = false;
};

}  // namespace recorder
