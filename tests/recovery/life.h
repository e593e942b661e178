#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "headless/core_seat.h"
#include "headless/session.h"
#include "recorder/recorder.h"

namespace life {

// Thrown when a life has come to where it is to end.
struct Ended {};

// What a life is told before it begins; the same seed is the same life, wherever it ends.
struct Settings {
    unsigned seed = 0;
    std::string folder;  // where it saves its scene, as "1.scene", "2.scene"
    std::uint64_t coreCalls = ~std::uint64_t{0};        // as many are made, and then
    std::uint64_t hostActs = ~std::uint64_t{0};         // or when so many of these were done
    std::function<void()> end = [] { throw Ended(); };  // this happens
    recorder::Stream* stream = nullptr;                 // takes in what crosses the boundary
};

// A seeded life of a Core and its user: groups with recordings, nested, cancelled, undone and
// redone; nodes that are made, moved, renamed, copied and deleted; changes outside of groups; saves
// in the midst of all that.
class Life final : public headless::CoreBetween, public CoreInterface, public TVL::NodeListener {
  public:
    explicit Life(const Settings& settings);
    ~Life() override;

    void Run(headless::Session& session);

    // What is open is ended, or taken back, as if the life had gone on to there.
    void Settle(bool keepsOpenGroup);

    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore&) override;
    void Detach(CoreInterface*, const DetachCore&) override;

    XMLNode GetCoreState() override;
    void SetCoreState(XMLNode) override {}
    void ResetCore() override { LetGo(); }
    void ShowCore(TVL::WindowHandle) override {}
    void NotifyTimeChanged(double) override {}
    bool IsCoreRunning() override { return false; }
    void StopCore() override {}
    TVL::Util::MessageNode* GetOptionNode(int, int) override { return nullptr; }
    void BindOption(int, int) override {}
    void GetOptionValue(int option, bool* value) override;
    void OnNodeRemoved(TVL::CNode* node) override;
    void OnNodeRestored(TVL::CNode* node) override;

  private:
    struct Owner;
    template <class Release>
    class Given;
    int Below(int bound);
    bool Chance(int percent) { return Below(100) < percent; }
    TVL::CoreNode* AnyNode();
    template <class Call>
    auto Core(const Call& call);
    void Host(const std::string& step, const std::function<void()>& act);

    void Act();
    void Group(int depth);
    void Change();
    void ChangeOutside();
    void Create();
    void Record();
    void Sample(TVL::CoreNode* node, double seconds);
    bool SampleLens(TVL::CoreNode* node, double seconds);
    void SamplePose(TVL::CoreNode* node, double seconds);
    void Save();
    void LetGo();

    const Settings settings_;
    const bool hasNotes_;
    const bool hasState_;
    std::mt19937 random_;
    TVL::AdaptorInterface* adaptor_ = nullptr;
    headless::Session* session_ = nullptr;
    std::unique_ptr<recorder::Recorder> recorder_;
    std::vector<std::unique_ptr<Owner>> owners_;
    std::vector<TVL::CoreNode*> nodes_;
    int named_ = 0;
    int saves_ = 0;
    int groups_ = 0;        // that are open
    int recordings_ = 0;    // the same
    bool isFixed_ = false;  // the group that is open is not to be taken back
    bool isNestCancelled_ = false;
    bool canRedo_ = false;
    std::size_t savedSteps_ = 0;  // of the undo buffer when the scene was saved last
    std::uint64_t coreCalls_ = 0;
    std::uint64_t hostActs_ = 0;
};

}  // namespace life
