#pragma once

#include <functional>
#include <memory>
#include <string>

#include "recorder/stream/stream.h"
#include "recorder/tape/tape_writer.h"
#include "tvl/core_interface.h"

namespace recorder {

using AttachCore = std::function<CoreInterface*(TVL::AdaptorInterface*)>;
using DetachCore = std::function<void(CoreInterface*)>;

// Stands between an adaptor and a Core, and tells a stream of every call before it hands it on, and
// of what was answered. The Core gets proxies of the adaptor, of nodes, snapshots and the adaptor's
// message nodes, the adaptor proxies of the Core, of owners, listeners, undo chunks and the Core's
// message nodes. Neither side can tell: a call is answered as it would be without, and what is
// thrown goes through.
//
// A proxy lives as long as what it stands for can be used, and a good while longer, so that what a
// Core uses after that can be named. What it uses then has no effect and answers 0 or nothing.
class Recorder {
  public:
    // The stream outlives it. `core` names the Core's library to the session.
    Recorder(Stream& stream, std::string core);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // What the routines of a Core do. `attach` and `detach` are those of the real one, and what it
    // throws goes through. A session of the stream begins with each attachment.
    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach);
    void Detach(CoreInterface* core, const DetachCore& detach);

    // Gives every object that is alive, for a segment to begin with.
    void TellObjects(const TapeWriter::TellObject& tell) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace recorder
