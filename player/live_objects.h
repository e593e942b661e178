#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "recorder/stream/record_reader.h"
#include "tvl/core_interface.h"

// A Core that is played from a tape has no objects of its own: what the adaptor holds in their
// place are the small ones of here, and all that it asks of them comes back to one place.
namespace player {

using recorder::ObjectId;
using recorder::ObjectKind;
using recorder::Operation;
using recorder::Record;
using recorder::RecordKind;

// Who answers for all objects of a played Core.
class PlayedCore {
  public:
    // A call of the adaptor's on one of them, in the form of a tape: the values of the answer,
    // which stand until the next call. None at all is an answer too: 0, nothing, and whatever was
    // there. What is thrown is thrown at the adaptor.
    virtual std::span<const std::uint64_t> Answer(const Record& call) = 0;

    // One of its message nodes broadcasts, by `send`, because somebody else had it do so, as a seat
    // that presses a button does.
    virtual void Broadcast(ObjectId /*node*/, const std::function<void()>& send) { send(); }

  protected:
    ~PlayedCore() = default;
};

template <class Type>
struct KindOfType;
#define PLAYER_KIND(Type, Kind)                               \
    template <>                                               \
    struct KindOfType<Type> {                                 \
        static constexpr ObjectKind kKind = ObjectKind::Kind; \
    }
PLAYER_KIND(TVL::AdaptorInterface, kAdaptor);
PLAYER_KIND(CoreInterface, kCore);
PLAYER_KIND(TVL::CoreNode, kNode);
PLAYER_KIND(TVL::CSnapshot, kSnapshot);
PLAYER_KIND(TVL::CSnapshot_Helper, kHelperSnapshot);
PLAYER_KIND(TVL::CSnapshot_Lens, kLensSnapshot);
PLAYER_KIND(TVL::CSnapshot_Mesh, kMeshSnapshot);
PLAYER_KIND(TVL::CSnapshot_Shape, kShapeSnapshot);
PLAYER_KIND(TVL::CoreElement, kOwner);
PLAYER_KIND(TVL::CUndo, kChunk);
PLAYER_KIND(TVL::Log, kLog);
PLAYER_KIND(TVL::ErrorCode, kRegistry);
#undef PLAYER_KIND

// Which living object stands for each one of a tape's, one to one. Those of the adaptor's are bound
// as they come to light: until somebody says which one of the tape's it is, such an object has an
// id that no tape has. Those of the Core's are made on their first use, and end with this, which
// therefore outlives the session; a chunk when it is released.
//
// Whom a node tells of itself is not on the tape before it tells. Every real node that the played
// Core has made or claimed therefore tells one and the same listener, which asks for the listener
// 0.
class LiveObjects {
  public:
    LiveObjects(TVL::AdaptorInterface& adaptor, PlayedCore& core);
    ~LiveObjects();
    LiveObjects(const LiveObjects&) = delete;
    LiveObjects& operator=(const LiveObjects&) = delete;

    TVL::AdaptorInterface& Adaptor() { return adaptor_; }

    // Null for none, for one of another kind, and for one of the adaptor's that is not bound.
    template <class Type>
    Type* Find(ObjectId id) {
        return static_cast<Type*>(Find(id, KindOfType<Type>::kKind));
    }
    TVL::Util::MessageNode* FindMessageNode(ObjectId id);
    TVL::NodeListener& Listener() { return *listener_; }

    template <class Type>
    ObjectId IdOf(Type* object) {
        return IdOf(KindOfType<Type>::kKind, object);
    }
    ObjectId IdOf(TVL::CNode* node) { return IdOf(static_cast<TVL::CoreNode*>(node)); }
    ObjectId IdOfAdaptorNode(TVL::Util::MessageNode* node) {
        return IdOf(ObjectKind::kAdaptorMessageNode, node);
    }

    // Whether the object that has the one id here is the tape's other one. Of one of the tape's
    // that was bound to none it becomes that; snapshots are lent anew each time, and become what
    // they are lent as.
    bool Match(ObjectId onTape, ObjectId here);

    // A snapshot is lent by a node, and is given back. One that is out when its node goes is there
    // for ever.
    void Lend(ObjectId snapshot, ObjectId node) { lent_[snapshot] = {node, true}; }
    void TakeBack(ObjectId snapshot);

    // Snapshot nodes are the Core's to release, and none goes by itself. Here they all are.
    void ReleaseNodes();

    // The object is gone.
    void End(ObjectId id);

    // An owner's plug-in, or a message node of the Core's, is called so; of others it is nothing.
    void Know(ObjectId id, std::string_view name);

  private:
    void* Find(ObjectId id, ObjectKind kind);
    ObjectId IdOf(ObjectKind kind, void* object);
    void* Make(ObjectId id);
    void Bind(ObjectId id, void* object);

    TVL::AdaptorInterface& adaptor_;
    PlayedCore& core_;
    std::unordered_map<ObjectId, void*> objects_;
    std::map<std::pair<ObjectKind, const void*>, ObjectId> ids_;
    std::unordered_map<ObjectId, std::shared_ptr<void>> made_;
    std::unordered_map<ObjectId, TVL::PluginRecord> named_;  // owners and message nodes
    struct Lent {
        ObjectId node;
        bool isOut;
    };
    std::unordered_map<ObjectId, Lent> lent_;  // by the snapshot
    std::unordered_set<TVL::CoreNode*> snapshotNodes_;
    std::unique_ptr<TVL::NodeListener> listener_;
    std::uint64_t unnamed_ = 0;  // objects that got an id here
};

}  // namespace player
