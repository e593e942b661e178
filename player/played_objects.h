#pragma once

#include "player/live_objects.h"
#include "recorder/stream/record_writer.h"

// The objects of a played Core, as the adaptor sees them.
namespace player {

// What all of them have: which one it is on the tape, and whom to ask. Each call is a record that
// is answered with the values of one.
class PlayedObject {
  public:
    PlayedObject(ObjectId id, PlayedCore& core, LiveObjects& objects)
        : id_(id), core_(core), objects_(objects) {}

  protected:
    template <class... Values>
    recorder::ValueReader Ask(Operation operation, const Values&... values) const {
        recorder::RecordWriter writer;
        return recorder::ValueReader(core_.Answer(writer.Call(id_, operation, values...)));
    }

    ObjectId id_;
    PlayedCore& core_;
    LiveObjects& objects_;
};

class PlayedInterface final : public CoreInterface, public PlayedObject {
  public:
    using PlayedObject::PlayedObject;
    XMLNode GetCoreState() override;
    void SetCoreState(XMLNode state) override;
    void ResetCore() override;
    void ShowCore(TVL::WindowHandle) override;
    void NotifyTimeChanged(double seconds) override;
    bool IsCoreRunning() override;
    void StopCore() override;
    TVL::Util::MessageNode* GetOptionNode(int option, int unused) override;
    void BindOption(int option, int unused) override;
    void GetOptionValue(int option, bool* value) override;
};

class PlayedOwner final : public TVL::CoreElement, public PlayedObject {
  public:
    PlayedOwner(ObjectId id, PlayedCore& core, LiveObjects& objects, TVL::PluginRecord& record);
    std::intptr_t HandleExtension(int extension, void* argument) override;
    std::vector<int> ListExtensions() override;
    bool HasExtension(int extension) override;
};

class PlayedListener final : public TVL::NodeListener, public PlayedObject {
  public:
    using PlayedObject::PlayedObject;
    void OnNodeRemoved(TVL::CNode* node) override;
    void OnNodeRestored(TVL::CNode* node) override;
};

class PlayedChunk final : public TVL::CUndo, public PlayedObject {
  public:
    using PlayedObject::PlayedObject;
    void Undo(bool isUndo) override;
    void Redo() override;
    void Release() override;
};

class PlayedMessageNode final : public TVL::Util::MessageNode, public PlayedObject {
  public:
    PlayedMessageNode(ObjectId id, PlayedCore& core, LiveObjects& objects, std::string nodeName);
    void Receive(TVL::Util::Message* message, bool isBroadcast) override;
    void Broadcast(TVL::Util::Message* message) override;
};

}  // namespace player
