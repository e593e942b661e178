#include <array>

#include "command/checks/checks.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/notify.h"
#include "host/time.h"
#include "tvl/panel.h"

namespace headless {
namespace {

constexpr int kSteps = 60;
constexpr int kManySteps = 400;

// A node of the scene, or nothing.
std::string SomeNode(CheckStage& stage) {
    const std::vector<NodeView> nodes = Nodes();
    return nodes.empty() ? "" : nodes[stage.Below(nodes.size())].name;
}

std::string SomeScene(CheckStage& stage) {
    constexpr std::array kNames = {"a", "b"};
    return stage.Scene(kNames[stage.Below(kNames.size())]);
}

// One of these, each as often as it stands here. Some cannot be done at some moments.
std::string SomeStep(CheckStage& stage) {
    const std::string press = "press " + std::to_string(TVL::kStartButton);
    const std::string node = '"' + SomeNode(stage) + '"';
    const std::string places[] = {"0,0,0", "1,0,0", "0,2,1"};
    const std::vector<std::string> steps = {press,
                                            press,
                                            press,
                                            "time " + std::to_string(stage.Below(4)),
                                            "play 0:1:0.1",
                                            "undo",
                                            "undo",
                                            "redo",
                                            "select " + node,
                                            "delete",
                                            "move " + node + ' ' + places[stage.Below(3)],
                                            "parent " + node + " \"" + SomeNode(stage) + '"',
                                            "save " + SomeScene(stage),
                                            "open " + SomeScene(stage),
                                            "merge " + SomeScene(stage),
                                            stage.Below(3) == 0 ? "new" : "time 0.5",
                                            "detach",
                                            "attach",
                                            "attach"};
    return steps[stage.Below(steps.size())];
}

void DoAnything(CheckStage& stage, int count) {
    while (count-- > 0)
        stage.Try(SomeStep(stage));
    stage.Try("attach");
    stage.Press();
}

// Somebody else in the host, who does things while it tells of others. What the Core does to the
// scene makes the host tell, and so brings this into the Core's own calls.
class Meddler final : public TimeChangeCallback {
  public:
    explicit Meddler(CheckStage& stage) : stage_(stage) {
        GetCOREInterface()->RegisterTimeChangeCallback(this);
        for (const int code : kCodes)
            RegisterNotification(&Hear, this, code);
    }
    ~Meddler() override {
        for (const int code : kCodes)
            UnRegisterNotification(&Hear, this, code);
        GetCOREInterface()->UnRegisterTimeChangeCallback(this);
    }
    Meddler(const Meddler&) = delete;
    Meddler& operator=(const Meddler&) = delete;

    void TimeChanged(TimeValue) override { Meddle(); }

  private:
    static constexpr std::array kCodes = {NOTIFY_SYSTEM_PRE_NEW,      NOTIFY_FILE_PRE_OPEN,
                                          NOTIFY_FILE_POST_OPEN,      NOTIFY_FILE_POST_MERGE,
                                          NOTIFY_FILE_PRE_SAVE,       NOTIFY_FILE_POST_SAVE,
                                          NOTIFY_SEL_NODES_PRE_DELETE};
    static constexpr int kDeepest = 2;

    static void Hear(void* self, NotifyInfo*) { static_cast<Meddler*>(self)->Meddle(); }

    void Meddle() {
        if (depth_ >= kDeepest || stage_.Below(3) == 0) return;
        ++depth_;
        Session& host = stage_.Host();
        switch (stage_.Below(5)) {
            case 0:
                host.SetTime(static_cast<TimeValue>(stage_.Below(9600)));
                break;
            case 1:
                host.Undo();
                break;
            case 2:
                host.Redo();
                break;
            case 3:
                host.Select({SomeNode(stage_)});
                break;
            default:
                host.PressButton(TVL::kStartButton);
                break;
        }
        --depth_;
    }

    CheckStage& stage_;
    int depth_ = 0;
};

void RandomSteps(CheckStage& stage) {
    DoAnything(stage, kSteps);
}

void ManySteps(CheckStage& stage) {
    DoAnything(stage, kManySteps);
}

void ReEntry(CheckStage& stage) {
    const Meddler meddler(stage);
    DoAnything(stage, kSteps);
}

constexpr auto kRandomChecks = std::to_array<Check>({
    {"random-steps", 9, "A person does anything, from the seed", &RandomSteps, true},
    {"re-entry", 9, "The same, with time, undo and its button inside its own calls", &ReEntry,
     true},
    {"many-steps", 10, "The same for longer", &ManySteps, true},
});

}  // namespace

std::span<const Check> RandomChecks() {
    return kRandomChecks;
}

}  // namespace headless
