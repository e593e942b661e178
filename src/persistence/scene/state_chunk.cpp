#include "persistence/scene/state_chunk.h"

#include <cstdint>
#include <string>

#include "core_link/core_link.h"
#include "persistence/scene/older_state.h"
#include "persistence/scene/state_format.h"
#include "tvl/log.h"

namespace {

// The scene's state was offered while there was no Core.
bool isStateUnread = false;

constexpr const char* kUnread =
    "Saving while state stored in the scene has never been read: it was opened without a CORE";

// The Core may detach in the middle of the loading.
void HandToCore(const XMLNode& state) {
    if (CoreInterface* const core = AttachedCore()) core->SetCoreState(state);
}

IOResult LoadStateChunk(ILoad& load) {
    char* text = nullptr;
    const IOResult result = load.ReadCStringChunk(&text);
    if (result != IO_OK) return result;
    HandToCore(XMLNode(text ? text : ""));
    return IO_OK;
}

}  // namespace

IOResult SaveState(ISave& save) {
    CoreInterface* const core = AttachedCore();
    if (!core) return IO_OK;
    const XMLNode state = core->GetCoreState();
    if (isStateUnread) TVL::Log(TVL::Log::kWarning).Write(kUnread);
    if (state.children.empty()) return IO_OK;
    save.BeginChunk(kStateChunk);
    save.WriteCString(state.Write("\n", "\t").c_str());
    save.EndChunk();
    return IO_OK;
}

IOResult LoadState(ILoad& load) {
    isStateUnread = !AttachedCore();
    if (isStateUnread) return IO_OK;
    XMLNode olderPlugins = Element(kStateElement);
    while (load.OpenChunk() == IO_OK) {
        const std::uint16_t id = load.CurChunkID();
        if (id == kOlderStateChunk) {
            olderPlugins.AddChild(ReadOlderState(load));
        } else if (id == kStateChunk) {
            const IOResult result = LoadStateChunk(load);
            if (result != IO_OK) return result;
        }
        load.CloseChunk();
    }
    HandToCore(olderPlugins);
    return IO_OK;
}

void LeaveStoredState() {
    isStateUnread = false;
}
