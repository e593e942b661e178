#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "replay_core/module/environment.h"
#include "replay_core/recorder/record_take.h"
#include "replay_core/recorder/text_file.h"
#include "replay_core/state/panel_options.h"
#include "replay_core/state/takes.h"
#include "tvl/adaptor_interface.h"
#include "tvl/core_interface.h"
#include "tvl/message.h"

namespace replay {

// While it lives, the adaptor writes into this library's own log and error registry, so that both
// sides fill one trace and draw their codes from one table. They are taken back before the library
// goes.
class PlacedServices {
  public:
    explicit PlacedServices(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {
        // Both are made, which can fail, before either is placed.
        TVL::ErrorCode* const codes = TVL::ErrorCode::GetInstance();
        TVL::Log* const log = TVL::Log::GetInstance();
        adaptor_.SetErrorCode(codes);
        adaptor_.SetLog(log);
    }
    ~PlacedServices() {
        adaptor_.ClearErrorCode();
        adaptor_.ClearLog();
    }
    PlacedServices(const PlacedServices&) = delete;
    PlacedServices& operator=(const PlacedServices&) = delete;

  private:
    TVL::AdaptorInterface& adaptor_;
};

// The Core as the adaptor sees it: asked for its window, it records the capture that the
// environment names (see environment.h). It stores its takes in scene files. It lives from `attach`
// to `detach`.
class ReplayCore final : public CoreInterface {
  public:
    explicit ReplayCore(TVL::AdaptorInterface& adaptor);

    // Ends all use of the adaptor. Undo records that name nodes of this Core go with it.
    ~ReplayCore();
    ReplayCore(const ReplayCore&) = delete;
    ReplayCore& operator=(const ReplayCore&) = delete;

    XMLNode GetCoreState() override;
    void SetCoreState(XMLNode state) override;
    void ResetCore() override;
    void ShowCore(TVL::WindowHandle mainWindow) override;
    void NotifyTimeChanged(double seconds) override;
    bool IsCoreRunning() override;
    void StopCore() override;
    TVL::Util::MessageNode* GetOptionNode(int option, int unused) override;
    void BindOption(int option, int unused) override;
    void GetOptionValue(int option, bool* value) override;

  private:
    void Show(const Request& request, Report& report);
    void ShowPanel() const;

    // The requests; see requests.cpp.
    void Merge(const Request& request, Report& report);
    void Sample(const Request& request, Report& report);
    void Inspect(const Request& request, Report& report);
    void Record(const Request& request, Report& report);
    void RecordPlan(std::span<const PlannedTake> plan, const RecordSettings& settings,
                    TextFile* csv, Report& report);
    std::vector<TakeReport> TellTakes() const;

    void TakeUpState();

    TVL::AdaptorInterface& adaptor_;
    PlacedServices services_;  // what follows may log to the end of its life
    PanelOptions options_;
    Takes takes_;

    // State that came, until all of it is taken up: where memory runs out meanwhile, that is tried
    // again, and no scene is saved without it.
    static constexpr std::size_t kMostUntaken = 8;  // for which nothing has to be allocated
    std::vector<XMLNode> untaken_;
    std::size_t statesHeard_ = 0;  // calls with state so far

    RecordingState recording_;
    double currentSeconds_;                 // the host's time
    TVL::Util::MessageNode convertButton_;  // its links end with it
};

}  // namespace replay
