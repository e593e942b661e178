#include "tests/support/puppet/stage.h"

namespace {

// Shows whether the library is in memory.
struct Presence {
    Presence() { puppet::TheStage().isLoaded = true; }
    ~Presence() { puppet::TheStage().isLoaded = false; }
};

const Presence presence;

}  // namespace
