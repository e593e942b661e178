#include "scene_state/state_chunk.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core_link/core_link.h"
#include "nodes/node_list.h"
#include "scene_state/state_format.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/log.h"

namespace {

// Both are the scene's, which outlives the adaptor.

// The scene's state was offered while there was no Core.
bool isStateUnread = false;

// What the Core has not got of a state whose loading ended inside a chunk. The host counts the
// chunks ahead of that one as read, so each save writes these ahead of the Core's own state.
std::vector<std::string> notHandedOver;

constexpr const char* kUnread =
    "Saving while state stored in the scene has never been read: it was opened without a CORE";

std::string TextOf(const XMLNode& state) {
    return state.Write("\n", "\t");
}

IOResult LoadStateChunk(ILoad& load, std::vector<std::string>& untaken) {
    char* text = nullptr;
    const IOResult result = load.ReadCStringChunk(&text);
    if (result != IO_OK) return result;
    const std::string whole(text ? text : "");
    const XMLNode state(whole);
    if (!state.children.empty()) RecordOfState().hadState = true;
    if (!HandToCore(state)) untaken.push_back(whole);
    return IO_OK;
}

// One that finds no memory cannot be read either.
IOResult LoadChunk(ILoad& load, std::vector<std::string>& untaken, XMLNode& olderPlugins) {
    IOResult result = IO_OK;
    const bool isDone = TVL::TraceIfThrown("the loading of a chunk", [&] {
        const std::uint16_t id = load.CurChunkID();
        if (id == kOlderStateChunk) olderPlugins.AddChild(ReadOlderState(load));
        if (id == kStateChunk) result = LoadStateChunk(load, untaken);
    });
    return isDone ? result : IO_ERROR;
}

void WriteStateChunk(ISave& save, const std::string& text) {
    save.BeginChunk(kStateChunk);
    save.WriteCString(text.c_str());
    save.EndChunk();
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
    for (const std::string& text : notHandedOver)
        WriteStateChunk(save, text);
    WriteStateChunk(save, TextOf(state));
    return IO_OK;
}

// The Core may have left in the middle of the loading.
bool HandToCore(const XMLNode& state) {
    CoreInterface* const core = AttachedCore();
    if (!core) {
        isStateUnread = true;
        return false;
    }
    const CoreLoads loading;
    return CallCore("SetCoreState", [&] { core->SetCoreState(state); }) && loading.IsAnswered();
}

IOResult LoadState(ILoad& load) {
    isStateUnread = !AttachedCore();
    if (isStateUnread) return IO_OK;
    std::vector<std::string> untaken;
    XMLNode olderPlugins = Element(kStateElement);
    while (load.OpenChunk() == IO_OK) {
        const IOResult result = LoadChunk(load, untaken, olderPlugins);
        if (result != IO_OK) {
            notHandedOver = std::move(untaken);
            if (!olderPlugins.children.empty()) notHandedOver.push_back(TextOf(olderPlugins));
            return result;
        }
        load.CloseChunk();
    }
    return HandToCore(olderPlugins) && untaken.empty() ? IO_OK : IO_ERROR;
}

void LeaveStoredState() {
    isStateUnread = false;
    notHandedOver.clear();
}
