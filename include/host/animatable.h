#pragma once

#include <cstdint>

#include "host/heap.h"
#include "host/host_api.h"
#include "host/interval.h"
#include "host/tab.h"
#include "host/types.h"

class IObjParam;

namespace headless {
class LiveObjects;
}

// Root of the host's objects. The host keeps a census of those alive, by class.
class HOST_API InterfaceServer : public MaxHeapOperators {
  public:
    virtual ~InterfaceServer();
    InterfaceServer(const InterfaceServer&) = delete;
    InterfaceServer& operator=(const InterfaceServer&) = delete;

  protected:
    InterfaceServer();

  private:
    friend class headless::LiveObjects;
    InterfaceServer* previousAlive_ = nullptr;
    InterfaceServer* nextAlive_ = nullptr;
};

// Flags of the key operations.
inline constexpr std::uint32_t NEXTKEY_LEFT = 1;
inline constexpr std::uint32_t NEXTKEY_RIGHT = 2;
inline constexpr std::uint32_t TRACK_DOSEL = 1;
inline constexpr std::uint32_t TRACK_DOALL = 2;
inline constexpr std::uint32_t SELKEYS_SELECT = 1;
inline constexpr std::uint32_t SELKEYS_DESELECT = 2;
inline constexpr std::uint32_t SELKEYS_CLEARKEYS = 4;
inline constexpr std::uint32_t TIME_INCLEFT = 1024;
inline constexpr std::uint32_t TIME_INCRIGHT = 2048;

// One key that a selection names.
struct TrackHitRecord {
    std::uint32_t hit = 0;  // the key's index
    std::uint32_t flags = 0;
};
using TrackHitTab = Tab<TrackHitRecord>;

// Anything that can be animated or holds something that can. The defaults are those of a thing
// without keys and without parts.
class HOST_API Animatable : public InterfaceServer {
  public:
    virtual void GetClassName(HostString& name);
    virtual SClass_ID SuperClassID() = 0;
    virtual Class_ID ClassID() = 0;
    virtual void DeleteThis() = 0;
    virtual void FreeCaches();
    virtual void BeginEditParams(IObjParam* ip, std::uint32_t flags, Animatable* previous);
    virtual void EndEditParams(IObjParam* ip, std::uint32_t flags, Animatable* next);

    // Parts, which may be null, in a fixed order.
    virtual int NumSubs();
    virtual Animatable* SubAnim(int index);
    virtual HostString SubAnimName(int index);
    virtual bool AssignController(Animatable* controller, int index);

    virtual int NumKeys();
    virtual TimeValue GetKeyTime(int index);
    virtual int GetKeyIndex(TimeValue t);
    virtual bool GetNextKeyTime(TimeValue t, std::uint32_t flags, TimeValue& next);
    virtual void DeleteKeyAtTime(TimeValue t);
    virtual bool IsKeyAtTime(TimeValue t, std::uint32_t flags);
    virtual int GetKeyTimes(Tab<TimeValue>& times, Interval range, std::uint32_t flags);
    virtual void DeleteTime(Interval range, std::uint32_t flags);
    virtual void DeleteKeys(std::uint32_t flags);
    virtual void DeleteKeyByIndex(int index);
    virtual void SelectKeys(TrackHitTab& hits, std::uint32_t flags);
    virtual void SelectKeyByIndex(int index, std::uint32_t value);
    virtual void MouseCycleCompleted(TimeValue t);
    virtual void MouseCycleStarted(TimeValue t);
};
