#include "persistence/scene/state_chunk.h"

#include <cstdint>
#include <string>

#include "core_link/core_call.h"
#include "core_link/core_link.h"
#include "nodes/node_list.h"
#include "persistence/scene/older_state.h"
#include "persistence/scene/state_format.h"
#include "persistence/scene/tagged_nodes.h"
#include "tvl/log.h"

namespace {

// The scene's state was offered while there was no Core.
bool isStateUnread = false;

constexpr const char* kUnread =
    "Saving while state stored in the scene has never been read: it was opened without a CORE";

// False if the Core could not take it. It may detach in the middle of the loading.
bool HandToCore(const XMLNode& state) {
    const CoreLoads loading;
    CoreInterface* const core = AttachedCore();
    return !core || CallCore("SetCoreState", [&] { core->SetCoreState(state); });
}

IOResult LoadStateChunk(ILoad& load, bool& isTaken) {
    char* text = nullptr;
    const IOResult result = load.ReadCStringChunk(&text);
    if (result != IO_OK) return result;
    const XMLNode state(text ? text : "");
    if (!state.children.empty()) RecordOfState().hadState = true;
    if (!HandToCore(state)) isTaken = false;
    return IO_OK;
}

void Refuse(const char* reason) {
    TVL::Log("The scene is not saved", TVL::Log::kError).Write(reason);
}

// A Core may store all that it has on its nodes, but it does not change to that in a scene.
void NoteState(bool isThere) {
    StateRecord& record = RecordOfState();
    if (!isThere && record.hadState && !AdaptorNodes().nodes.empty())
        TVL::Log(TVL::Log::kWarning).Write("CORE has nodes, and its state is suddenly empty");
    record.hadState = isThere;
}

}  // namespace

IOResult SaveState(ISave& save) {
    CoreInterface* const core = AttachedCore();
    if (!core) return IO_OK;
    if (isStateUnread) TVL::Log(TVL::Log::kWarning).Write(kUnread);
    if (RecordOfState().isTagLost) {
        Refuse("an owner of nodes could not give its state");
        return IO_ERROR;
    }
    XMLNode state;
    if (!CallCore("GetCoreState", [&] { state = core->GetCoreState(); })) {
        Refuse("the CORE could not give its state");
        return IO_ERROR;
    }
    NoteState(!state.children.empty());
    if (state.children.empty()) return IO_OK;
    save.BeginChunk(kStateChunk);
    save.WriteCString(state.Write("\n", "\t").c_str());
    save.EndChunk();
    return IO_OK;
}

IOResult LoadState(ILoad& load) {
    isStateUnread = !AttachedCore();
    if (isStateUnread) return IO_OK;
    bool isTaken = true;
    XMLNode olderPlugins = Element(kStateElement);
    while (load.OpenChunk() == IO_OK) {
        const std::uint16_t id = load.CurChunkID();
        if (id == kOlderStateChunk) {
            olderPlugins.AddChild(ReadOlderState(load));
        } else if (id == kStateChunk) {
            const IOResult result = LoadStateChunk(load, isTaken);
            if (result != IO_OK) return result;
        }
        load.CloseChunk();
    }
    if (!HandToCore(olderPlugins)) isTaken = false;
    return isTaken ? IO_OK : IO_ERROR;
}

void LeaveStoredState() {
    isStateUnread = false;
}
