#pragma once

#include "fuzz/fuzzed.h"
#include "headless/breaches.h"
#include "headless/memory_chunks.h"
#include "host/interface.h"
#include "tests/support/world.h"

// The running host with the plug-in and a Core, which nobody watches. It lives as long as the
// process, and each input leaves an empty scene behind.
class FuzzedWorld : public World {
  public:
    static FuzzedWorld& Get() {
        static FuzzedWorld world;
        return world;
    }

    void Clear() {
        Session().Reset();
        Core().TakeCalls();
        Require(headless::TakeBreaches().empty());
    }

  private:
    FuzzedWorld() {
        Session().OnMessageBox([](const headless::MessageBoxText&) {});
    }
};

// Loads the object from the bytes and saves what it made of them, which is no more than a small
// multiple.
inline void LoadAndSave(ReferenceTarget& object, std::span<const std::byte> bytes) {
    headless::LoadBytes(bytes, object);
    const std::vector<std::byte> saved = headless::SavedBytes(object);
    Require(saved.size() <= 4 * bytes.size() + 4096);
}
