#pragma once

#include <cstdint>

#include "tvl/adaptor_interface.h"
#include "tvl/ids.h"
#include "tvl/message.h"
#include "tvl/xml_node.h"

// What an adaptor asks of the Core: the object that the Core's routine `attach` returns. All calls
// come on the host's user-interface thread, and any of them may call back into the adaptor.
// The order of the virtual operations is part of the contract.
class CoreInterface {
  public:
    // The Core's whole state, as one element. Without children nothing is stored. A Core that
    // cannot give its state throws, and the save is refused; without children it would say that it
    // has none.
    virtual XMLNode GetCoreState() = 0;

    // State from a scene file, in which the Core finds its nodes by AdaptorInterface::ClaimNodes.
    // Several calls can come for one file: while it is read what GetCoreState gave, then the
    // plug-ins of earlier versions in an element "TVL"; and when it has been opened or merged, or
    // the Core was attached by the panel, in such an element too, what its nodes bear (see
    // CoreElement). A "TVL" without children says that there is nothing to load. What a Core throws
    // at stays where it was stored.
    virtual void SetCoreState(XMLNode state) = 0;

    // The scene is about to be replaced: let go of every node.
    virtual void ResetCore() = 0;

    // The user asks for the Core's window; `mainWindow` is the host's.
    virtual void ShowCore(TVL::WindowHandle mainWindow) = 0;

    // The host's time has moved.
    virtual void NotifyTimeChanged(double seconds) = 0;

    // While a Core says that it is running, the adaptor's controllers report no keys to the host.
    virtual bool IsCoreRunning() = 0;

    // Asked for before nodes are deleted while the Core is running.
    virtual void StopCore() = 0;

    // Options are those of AdaptorOption (tvl/ids.h). The second argument is 0. When `attach` has
    // returned, BindOption tells of the two switches, and then GetOptionNode is asked for. It gives
    // the message node of a button, which the adaptor listens to (a press is a message from that
    // node with the id kButtonPressed), or null.
    virtual TVL::Util::MessageNode* GetOptionNode(int option, int unused) = 0;
    virtual void BindOption(int option, int unused) = 0;

    // Writes the option's value; an option that the Core does not know leaves it as it is.
    virtual void GetOptionValue(int option, bool* value) = 0;

  protected:
    ~CoreInterface() = default;
};

// Stands before the definition of each of the three routines below, and has the library export it.
#if defined(_WIN32)
#define TVL_CORE_ROUTINE extern "C" __declspec(dllexport)
#else
#define TVL_CORE_ROUTINE extern "C" __attribute__((visibility("default")))
#endif

namespace TVL {

// The routines that a Core library exports by name, with C linkage:
//
//   getVersion   returns kInterfaceVersion; a library with another number is not attached
//   attach       called once for each load; null refuses
//   detach       the last call before the library is freed
//
// Before `detach` returns the Core has given back what it placed (ClearErrorCode, ClearLog), has
// destroyed its message nodes, and has ended all use of nodes, snapshots and the adaptor itself.
// What the Core throws ends at the call that the adaptor made, whichever it is: one of these, or of
// an owner, a listener, an undo chunk or a message node. The trace names the call and what was
// thrown, and the host goes on. A question counts as not asked, a start as refused, a save in which
// the state was asked for as failed. A recording or the keyboard that was taken inside the call,
// and not given back there, is given back; the hold that an undo group began there is cancelled,
// and EndUndoGroup, which the Core still owes, ends nothing more.
//
// Texts, lists, meshes and trees cross by value in both directions: one side makes what the other
// frees, with classes that each compiles for itself. Both therefore use the system's C heap, which
// is where `new` takes memory from unless a library replaces it for itself, and one layout of
// classes: the same compiler family, the same standard library, and none of the settings by which
// that lays its classes out otherwise (such as _GLIBCXX_DEBUG). Optimisation, debug information,
// NDEBUG and _GLIBCXX_ASSERTIONS may differ.
//
// On Windows a source that includes <windows.h> as well undefines its macros GetMessage and
// GetCurrentTime before it includes these headers, since they would rename operations.
using GetVersionRoutine = std::uint32_t();
using AttachRoutine = CoreInterface*(AdaptorInterface*);
using DetachRoutine = void(CoreInterface*);

inline constexpr const char* kGetVersionRoutine = "getVersion";
inline constexpr const char* kAttachRoutine = "attach";
inline constexpr const char* kDetachRoutine = "detach";

}  // namespace TVL
