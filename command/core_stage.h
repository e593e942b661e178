#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "command/written_files.h"
#include "headless/session.h"
#include "replay/report.h"

namespace headless {

// Whom the host finds when it starts.
enum class Guests {
    kPluginAndCore,
    kPluginAlone,  // it looks for a Core and finds none installed, and so to the process's end
    kNobody,
};

struct GuestChoice {
    Guests guests = Guests::kPluginAndCore;
    std::string core;  // the library that is the Core; empty for the one that is installed
};

// The variables of replay/request.h that make up a request, with their values.
using CoreRequest = std::map<std::string, std::string>;

// Each value on a line of its own, as the Core reads lists. A value that holds a line end cannot be
// told to it.
std::string Lines(const std::vector<std::string>& values);

// A host that has started with the plug-in beside the program, and the Core that was chosen. What
// cannot be done is thrown as a Failure.
class CoreStage {
  public:
    explicit CoreStage(const GuestChoice& choice, const SessionSettings& settings = {});

    Session& Host() { return session_; }

    bool WantsCore() const { return guests_ == Guests::kPluginAndCore; }

    // Presses the button that has the Core do its work. Variables that the request does not hold
    // are taken away, but for that of the frames, for which the command has no option.
    replay::Report AskCore(const CoreRequest& request);

    // What the host does with scene files.
    void Open(const std::string& scene);
    void Save(const std::string& scene);
    void MergeByHost(const std::string& scene);

    // What of that did not go well, and what the guests breached so far, a line each.
    const std::vector<std::string>& Complaints();

    // What message boxes have said so far, a text each.
    const std::vector<std::string>& BoxTexts() const { return boxTexts_; }

    // How many blocks are left on the host's heap.
    std::size_t ShutDown();

  private:
    void Take(FileOutcome outcome);

    Guests guests_;
    CoreFile report_{""};
    std::vector<std::string> complaints_;
    std::vector<std::string> boxTexts_;
    Session session_;
};

}  // namespace headless
