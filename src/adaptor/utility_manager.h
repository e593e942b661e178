#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "core_link/core_link.h"
#include "host/gup.h"
#include "host/time.h"

// The global utility: finds and attaches the Core, hears the host's events for it, and takes it
// down again. There is one, made on first use by whoever comes first, and never destroyed; it
// outlives the singletons. Without a Core it idles.
//
//   state             coreModule  core
//   unloaded          null        null
//   attached          set         set
//   loaded, refused   set         null   `attach` gave null; the next attach or detach frees it
//
// The order of the virtual operations and of the fields is part of the contract.
class UtilityManager final : public GUP {
  public:
    static UtilityManager& Get();

    // 0: the host keeps the plug-in, with a Core or without; 1 if there is no Core to load.
    std::uint32_t Start() override;
    void Stop() override;
    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;
    void DeleteThis() override {}

    // Loads the Core of the installation and hands the adaptor to it. A Core that is attached stays
    // so; one that refused is loaded anew. 0, or the value of the code "CORE_COULDNOTLOAD"; a Core
    // that is no match for this adaptor is reported in the trace, unloaded, and counts as 0.
    std::int32_t AttachCore();

    // Always 0. Nothing of the Core's is left in the adaptor or in the host's undo stream.
    std::int32_t DetachCore();

    // The host is going down: detaches the Core and destroys the singletons, once no routine of the
    // Core's is running that comes or goes.
    void ShutDownAdaptor();

    // Inside a routine of the Core's, which neither attaches nor detaches.
    bool IsCoreInPassage() const { return coreComesOrGoes; }
    bool IsCoreLeaving() const { return coreLeaves; }

    // From here on the host tells of its events, until Stop. Once for each Start.
    void HearHost();

    class CTimeChangeCallback final : public TimeChangeCallback {
      public:
        void TimeChanged(TimeValue t) override;
    };

    CoreLink link;
    HWND panelWindow = nullptr;  // the utility's page, while it is open
    CTimeChangeCallback timeCallback;

  private:
    UtilityManager() = default;
    ~UtilityManager() override = default;

    void GiveUpStart(const std::string& words);
    std::int32_t LoadCore();
    bool KeepMatchingCore();
    void BringCoreUp();
    void LinkOptions();
    void LetCoreGo();
    void TakeCoreDown();
    void ShutDownIfAsked();

    // What a Core should have taken with it when it was detached, and did not. Taken down while its
    // library is still there; nothing of the Core's is called but the ends of undo chunks and the
    // message nodes that still stand. A warning in the trace tells what there was. A nest of undo
    // groups ends as its last EndUndoGroup would, but one that began behind the first `nests` is
    // cancelled: a routine threw that began it.
    static void SweepCore(std::uint32_t nests);
    static constexpr std::uint32_t kNoNests = std::numeric_limits<std::uint32_t>::max();

    void RegisterHostEvents();
    void UnregisterHostEvents();

    bool coreComesOrGoes = false;  // a routine of the Core's is running that must not run twice
    bool coreLeaves = false;       // that routine is `detach`
    bool shutdownWaits = false;    // for the end of that routine
    bool isKept = false;           // by the host, which calls Stop then
    bool hearsHost = false;        // or did, since the host started
};
