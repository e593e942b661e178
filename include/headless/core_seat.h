#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tvl/core_interface.h"

// Marks what the seat offers. Its library, and whoever is linked with that, are built with what
// marks an export or an import on their system.
#ifndef SEAT_API
#define SEAT_API
#endif

namespace headless {

// One of the adaptor's options (tvl/ids.h), as the Core that is attached has it.
struct OptionView {
    int id = 0;
    std::string name;           // as the adaptor's panel shows it
    bool isButton = false;      // else a switch
    bool isKnown = false;       // the Core has a message node for the button, or a value
    std::optional<bool> value;  // of a switch that the Core knows
};

// Who stands between the plug-in and the library that has a seat, or is a Core in its place. The
// two are called as the Core's routines would be; the functions are the library's own routines, and
// empty where there is no library. What either throws is thrown at the plug-in.
class SEAT_API CoreBetween {
  public:
    using AttachCore = std::function<CoreInterface*(TVL::AdaptorInterface*)>;
    using DetachCore = std::function<void(CoreInterface*)>;
    virtual CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) = 0;
    virtual void Detach(CoreInterface* core, const DetachCore& detach) = 0;

  protected:
    ~CoreBetween() = default;
};

// The seat of the Core beside a session: any library can take it, wherever it lies and whatever its
// name is, and whoever drives the session can ask what came of that and press the Core's options.
// The plug-in notices nothing: it finds, loads and frees a Core as it always does, and the library
// is loaded with it from where it lies, and freed with it. Nothing is copied and no installation is
// changed: what the plug-in reads of the registry is another for this process alone, as long as the
// seat stands.
//
//     headless::CoreSeat seat("build/Core/Core64.so");
//     headless::Session session;
//     session.LoadPlugin(plugin);
//     session.Start();
//     if (!seat.WhyAbsent().empty()) ...
//
// A process has one seat at a time. It is made before Session::Start, and ends when the session has
// shut down.
class SEAT_API CoreSeat {
  public:
    // Empty for the Core that is installed, as the registry names it; where none is, for the one
    // that lies beside the program.
    explicit CoreSeat(const std::string& library = {});

    // The same with somebody between, who outlives the seat.
    CoreSeat(const std::string& library, CoreBetween& between);

    // Without a library: somebody of this program's own is the Core, and outlives the seat.
    explicit CoreSeat(CoreBetween& inPlace);

    ~CoreSeat();
    CoreSeat(const CoreSeat&) = delete;
    CoreSeat& operator=(const CoreSeat&) = delete;

    // The path of the library; empty where there is none, or it cannot be told, which WhyAbsent
    // gives the reason of.
    const std::string& Library() const;

    bool IsAttached() const;

    // Empty while a Core is attached. Else why there is none, in one line: no library at the place
    // where it was looked for; one that does not load, with the system's word; a routine that is
    // missing; another version, with both numbers; one that refused, with what it threw if it did;
    // or one that has left. Before it is first asked for by the plug-in, the library is loaded and
    // asked for its version here, and freed again.
    std::string WhyAbsent() const;

    // All options of the adaptor, in the order of its panel; none while no Core is attached.
    std::vector<OptionView> Options() const;

    // Presses a button of the Core's, the first of that id or name, by sending what the Core's own
    // window sends. False: no Core is attached, there is no such button, it has no message node for
    // it, or nobody listens to that. What the Core throws comes out as a std::runtime_error with
    // its words.
    bool Press(int option);
    bool Press(std::string_view name);

    // Has the adaptor write out its trace (kTraceVariable in tvl/installation.h) up to now. It does
    // so by itself at the end of every event but a change of time. Nothing while no Core is
    // attached.
    void WriteTrace();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace headless
