#include "tests/recovery/life.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/time.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/scene_digest.h"
#include "tvl/ids.h"

namespace life {
namespace {

// Nothing is done by it; its undo is heard.
struct Chunk final : TVL::CUndo {
    void Undo(bool) override {}
    void Redo() override {}
};

TVL::CMesh Triangle(int size) {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {1.0 * size, 0, 0}, {0, 1.0 * size, 0}};
    mesh.faces = {0, 1, 2};
    return mesh;
}

}  // namespace

struct Life::Owner final : TVL::CoreElement {
    Owner(Life& core, std::string name) : life(core), record{std::move(name)} { plugin = &record; }

    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id != TVL::kSceneBeingSaved || !life.hasState_) return 0;
        XMLNode part("TVL_Plugin", "");
        part.AddChild(XMLNode("name", record.name));
        XMLNode& info = part.AddChild(XMLNode("nodeinfo", ""));
        for (TVL::CNode* const node : life.adaptor_->GetNodes(this))
            info.AddChild(XMLNode("node", "")).attributes["name"] = node->GetNodeName();
        static_cast<XMLNode*>(argument)->AddChild(XMLNode("masternode", "")).AddChild(part);
        return 0;
    }

    Life& life;
    TVL::PluginRecord record;
};

Life::Life(const Settings& settings)
    : settings_(settings),
      hasNotes_(settings.seed % 3 != 0),
      hasState_(settings.seed % 3 == 0 || settings.seed % 2 == 0),
      random_(settings.seed) {
    for (const char* name : {"Rig", "Prop"})
        owners_.push_back(std::make_unique<Owner>(*this, name));
}

Life::~Life() = default;

CoreInterface* Life::Attach(TVL::AdaptorInterface* adaptor, const AttachCore&) {
    if (!settings_.stream) {
        adaptor_ = adaptor;
        return this;
    }
    recorder_ = std::make_unique<recorder::Recorder>(*settings_.stream, "life");
    return recorder_->Attach(adaptor, [this](TVL::AdaptorInterface* proxy) -> CoreInterface* {
        adaptor_ = proxy;
        return this;
    });
}

void Life::Detach(CoreInterface* core, const DetachCore&) {
    const auto leave = [this](CoreInterface*) {
        LetGo();
        adaptor_->FlushUndoBuffer();
    };
    if (recorder_)
        recorder_->Detach(core, leave);
    else
        leave(core);
}

XMLNode Life::GetCoreState() {
    XMLNode state("life", "");
    if (hasState_) state.AddChild(XMLNode("saves", std::to_string(saves_)));
    return state;
}

void Life::GetOptionValue(int option, bool* value) {
    if (option == TVL::kOptimisedControllers) *value = settings_.seed % 4 != 3;
}

void Life::OnNodeRemoved(TVL::CNode* node) {
    std::erase(nodes_, static_cast<TVL::CoreNode*>(node));
}

void Life::OnNodeRestored(TVL::CNode* node) {
    nodes_.push_back(static_cast<TVL::CoreNode*>(node));
}

int Life::Below(int bound) {
    return static_cast<int>(random_() % static_cast<unsigned>(bound));
}

TVL::CoreNode* Life::AnyNode() {
    return nodes_.empty()
               ? nullptr
               : nodes_[static_cast<std::size_t>(Below(static_cast<int>(nodes_.size())))];
}

// What the adaptor has given, and gets back also where the life ends ahead of that.
template <class Release>
class Life::Given {
  public:
    Given(Life& owner, Release release) : life_(owner), release_(std::move(release)) {}
    ~Given() {
        if (!isBack_) release_();
    }
    Given(const Given&) = delete;
    Given& operator=(const Given&) = delete;

    void GiveBack() {
        life_.Core([this] {
            isBack_ = true;
            release_();
        });
    }

  private:
    Life& life_;
    Release release_;
    bool isBack_ = false;
};

template <class Call>
auto Life::Core(const Call& call) {
    if (coreCalls_ == settings_.coreCalls) settings_.end();
    ++coreCalls_;
    return call();
}

void Life::Host(const std::string& step, const std::function<void()>& act) {
    if (hostActs_ == settings_.hostActs) settings_.end();
    ++hostActs_;
    if (settings_.stream) {
        settings_.stream->Note("act", "");
        if (hasNotes_ && !step.empty()) settings_.stream->Note(recorder::note::kStep, step);
    }
    act();
}

void Life::Run(headless::Session& session) {
    session_ = &session;
    for (int act = 0; act < 24; ++act)
        Act();
    settings_.end();
}

void Life::Act() {
    const int choice = Below(100);
    const std::size_t steps = session_->UndoLabels().size();
    if (choice < 55) {
        Group(0);
    } else if (choice < 65) {
        ChangeOutside();
    } else if (choice < 75) {
        if (steps <= savedSteps_) return;
        Host("undo", [this] { session_->Undo(); });
        canRedo_ = true;
    } else if (choice < 82) {
        if (!canRedo_ || session_->RedoLabels().empty()) return;
        Host("redo", [this] { session_->Redo(); });
    } else if (choice < 92) {
        const int frame = Below(30);
        Host("time", [&] { session_->SetTime(frame * GetTicksPerFrame()); });
    } else {
        Save();
    }
}

void Life::Save() {
    if (isNestCancelled_) return;
    Host("", [this] {
        const std::string path = settings_.folder + '/' + std::to_string(++saves_) + ".scene";
        session_->SaveScene(path);
        savedSteps_ = session_->UndoLabels().size();
        canRedo_ = false;
        isFixed_ = groups_ > 0;
        if (settings_.stream && hasNotes_)
            settings_.stream->Note(recorder::note::kSaved,
                                   recorder::DigestOfFile(path) + ' ' + path);
    });
}

void Life::Group(int depth) {
    const std::string name = "Group " + std::to_string(++named_);
    Core([&] { return adaptor_->BeginUndoGroup(name); });
    ++groups_;
    canRedo_ = false;
    if (!hasNotes_ || Chance(30)) Core([&] { return adaptor_->AddUndoChunk(new Chunk); });
    for (int change = 1 + Below(4); change > 0; --change) {
        if (depth < 2 && Chance(10)) Group(depth + 1);
        Change();
        if (Chance(4)) Save();
    }
    // A scene that was saved in the midst has what no undo would take out of it again, and keys
    // that are turned into another parent's space and back have other last bits.
    const bool isCancelled = Chance(10) && !isFixed_;
    Core([&] { return isCancelled ? adaptor_->CancelUndoGroup() : adaptor_->EndUndoGroup(); });
    --groups_;
    isNestCancelled_ = groups_ > 0 && (isNestCancelled_ || isCancelled);
    if (groups_ == 0 && std::exchange(isFixed_, false)) savedSteps_ = session_->UndoLabels().size();
}

void Life::Change() {
    TVL::CoreNode* const node = AnyNode();
    const int choice = Below(100);
    if (!node || choice < 20) return Create();
    if (choice < 70) return Record();
    if (choice < 76) {
        TVL::CoreNode* const parent = AnyNode();
        TVL::CoreNode* const to = Chance(50) || parent == node ? nullptr : parent;
        if (isNestCancelled_) return;
        isFixed_ = true;
        Core([&] { node->SetParent(to); });
    } else if (choice < 84) {
        // Where a controller without keys is depends on what was looked at last, by anybody.
        Core([&] { return adaptor_->BeginRecordingUnkeyed({}); });
        ++recordings_;
        SampleLens(node, 0);
        SamplePose(node, 0);
        Core([&] { return adaptor_->EndRecording(); });
        --recordings_;
        const double from = Below(60) / 30.0;
        Core([&] { node->DeleteAnimationFrom(from); });
    } else if (choice < 88) {
        const std::string name = "Renamed " + std::to_string(++named_);
        Core([&] { node->SetName(name); });
    } else if (choice < 93) {
        Core([&] { node->Delete(true); });
    } else {
        const std::string name = "Copy " + std::to_string(++named_);
        TVL::CoreNode* const copy = Core([&] { return node->Clone(false); });
        if (!copy) return;
        Given given(*this, [=] { node->ReleaseNode(copy); });
        Core([&] { copy->SetName(name); });  // a name that the host chooses hangs on what else was
        given.GiveBack();
    }
}

// What undo does not take back.
void Life::ChangeOutside() {
    TVL::CoreNode* const node = AnyNode();
    if (!node || Chance(30)) {
        Create();
        TVL::CoreNode* const made = nodes_.empty() || Chance(40) ? nullptr : nodes_.back();
        if (made) Core([&] { return made->HandleExtension(TVL::kStopRecording, nullptr); });
    } else if (Chance(40)) {
        Record();
    } else if (TVL::CSnapshot_Helper* const look =
                   Core([&] { return node->AcquireHelperSnapshot(); })) {
        Given given(*this, [=] { node->ReleaseHelperSnapshot(look); });
        const int size = 1 + Below(5);
        Core([&] { look->SetMesh(Triangle(size)); });
        Core([&] { look->SetColor(0.25f, 0.5f, 1.0f); });
        given.GiveBack();
    }
    // It is built on groups that are not to be taken back from below it.
    savedSteps_ = session_->UndoLabels().size();
    canRedo_ = false;
}

void Life::Create() {
    Owner* const owner = owners_[static_cast<std::size_t>(Below(2))].get();
    const std::string name = (Chance(15) ? "Twin" : "Node " + std::to_string(++named_));
    TVL::CoreNode* const parent = Chance(60) ? nullptr : AnyNode();
    const int size = 1 + Below(5);
    const bool isLens = Chance(30);
    TVL::CNode* const node = Core([&] {
        return isLens ? adaptor_->CreateLensNode(owner, name, parent, this)
                      : adaptor_->CreateHelperNode(owner, name, parent, Triangle(size), this);
    });
    auto* const made = static_cast<TVL::CoreNode*>(node);
    if (made && std::ranges::find(nodes_, made) == nodes_.end()) nodes_.push_back(made);
}

void Life::Record() {
    std::vector<TVL::CoreElement*> owners = {owners_[static_cast<std::size_t>(Below(2))].get()};
    const bool isKeyed = Chance(50);
    Core([&] {
        return isKeyed ? adaptor_->BeginRecording(owners) : adaptor_->BeginRecordingUnkeyed(owners);
    });
    ++recordings_;
    double seconds = Below(30) / 30.0;
    for (int sample = 2 + Below(12); sample > 0; --sample, seconds += (1 + Below(3)) / 30.0) {
        if (TVL::CoreNode* const node = AnyNode()) Sample(node, seconds + 1e-6);
        if (Chance(2)) Save();
    }
    Core([&] { return adaptor_->EndRecording(); });
    --recordings_;
}

void Life::Sample(TVL::CoreNode* node, double seconds) {
    if (!Chance(25) || !SampleLens(node, seconds)) SamplePose(node, seconds);
}

// False: the node has no lens.
bool Life::SampleLens(TVL::CoreNode* node, double seconds) {
    TVL::CSnapshot_Lens* const lens = Core([&] { return node->AcquireLensSnapshot(seconds); });
    if (!lens) return false;
    Given given(*this, [=] { node->ReleaseLensSnapshot(lens); });
    const double degrees = 20 + Below(60);
    Core([&] { lens->SetFieldOfView(degrees); });
    Core([&] { lens->SetTargetDistance(degrees * 3); });
    given.GiveBack();
    return true;
}

void Life::SamplePose(TVL::CoreNode* node, double seconds) {
    TVL::CSnapshot* const pose = Core([&] { return node->AcquireSnapshot(seconds); });
    if (!pose) return;
    Given given(*this, [=] { node->ReleaseSnapshot(pose); });
    const bool isLocal = Chance(30);
    TVL::CMatrix4 matrix =
        Core([&] { return isLocal ? pose->GetLocalTransform() : pose->GetWorldTransform(); });
    for (std::size_t axis = 0; axis < 3; ++axis)
        matrix.rows[3][axis] += (Below(2001) - 1000) / 997.0;
    Core([&] { isLocal ? pose->SetLocalTransform(matrix) : pose->SetWorldTransform(matrix); });
    given.GiveBack();
}

void Life::Settle(bool keepsOpenGroup) {
    for (; recordings_ > 0; --recordings_)
        adaptor_->EndRecording();
    for (; groups_ > 0; --groups_)
        keepsOpenGroup ? adaptor_->EndUndoGroup() : adaptor_->CancelUndoGroup();
}

void Life::LetGo() {
    for (const auto& owner : owners_)
        for (TVL::CNode* const node : adaptor_->GetNodes(owner.get()))
            static_cast<TVL::CoreNode*>(node)->Destroy();
    nodes_.clear();
}

}  // namespace life
