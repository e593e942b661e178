#pragma once

#include <cstddef>

#include "tvl/log.h"

// The adaptor's trace on disk, in the file that the environment variable LUMISET_TRACE names; there
// is none if it names none. The text is taken out of the log part by part: at the end of each event
// of the host's that the adaptor has handled and of each press of its buttons, behind whatever a
// Core threw, when one has been attached or not and when it has gone, before the log is replaced,
// cleared or destroyed, and when the module goes. A change of time is no such event, since one
// comes with each frame that is played: its lines wait for the next, or for whoever has SetLog
// called to read them. So whoever reads the file between two events can tell which lines the last
// one brought. The file has every line of the adaptor's once, whoever's log it was in, and of a
// Core's own log what it had taken in before it was placed. Parts are appended; whoever names the
// file empties it.

// Appends what the log in use has taken in since the last time. Where that is nothing, two sizes
// are compared and no more.
void WriteTrace() noexcept;

// Stands around what the adaptor does at one event.
class TraceAfter {
  public:
    TraceAfter() = default;
    ~TraceAfter() { WriteTrace(); }
    TraceAfter(const TraceAfter&) = delete;
    TraceAfter& operator=(const TraceAfter&) = delete;
};

// The module goes. A log that the other side placed can be gone by now, and is not read any more.
void EndTrace() noexcept;

// To be called when the log in use has been destroyed, once its text was written.
void RestartTrace();

// Stands around the moment at which another log comes into use, or none.
class TraceHandover {
  public:
    explicit TraceHandover(const TVL::Log* placed = nullptr);
    ~TraceHandover();
    TraceHandover(const TraceHandover&) = delete;
    TraceHandover& operator=(const TraceHandover&) = delete;
};
