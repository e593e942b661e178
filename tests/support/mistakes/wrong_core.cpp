// A Core that records a rig of two helpers and a camera, and makes one mistake in doing so: see
// mistakes.h. Each press of the button is a take.

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "tests/support/mistakes/mistakes.h"
#include "tvl/core_interface.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

using TVL::CMatrix4;
using TVL::CoreNode;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kMetre = 39.37;  // in host units

bool Makes(std::string_view mistake) {
    static const char* const variable = std::getenv(mistakes::kVariable);
    return variable && mistake == variable;
}

// While it is there nobody asks who frees what is made: some mistakes leave that behind.
struct Unaccounted {
#if defined(__SANITIZE_ADDRESS__)
    Unaccounted() {
        __lsan_disable();
    }
    ~Unaccounted() {
        __lsan_enable();
    }
    Unaccounted(const Unaccounted&) = delete;
    Unaccounted& operator=(const Unaccounted&) = delete;
#endif
};

struct Owner final : TVL::CoreElement {
    explicit Owner(std::string name) : record{std::move(name)} { plugin = &record; }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kSceneBeingSaved && Makes("has two owners of one name"))
            static_cast<XMLNode*>(argument)->AddChild(XMLNode("masternode", ""));
        return 0;
    }
    TVL::PluginRecord record;
};

struct Chunk final : TVL::CUndo {
    void Undo(bool) override {}
    void Redo() override {}
};

// Works on when `detach` has returned.
struct Late {
    ~Late() {
        if (adaptor) adaptor->GetCurrentTime();
    }
    TVL::AdaptorInterface* adaptor = nullptr;
} late;

TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
    mesh.faces = mesh.textureFaces = {0, 1, 2};  // as they are where there is no texture
    if (Makes("gives a mesh with a vertex that is no number")) mesh.vertices[1][1] = kNaN;
    if (Makes("gives a face without a vertex")) mesh.faces[2] = 3;
    if (Makes("gives half a face")) mesh.faces.push_back(0);
    return mesh;
}

double TimeOf(int frame) {
    return frame / 30.0 + 1e-6;
}

// Lends a snapshot to what is done with it.
template <class Work>
void At(double seconds, CoreNode& node, const Work& work) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(seconds);
    if (!snapshot) return;
    work(*snapshot);
    node.ReleaseSnapshot(snapshot);
}

// Without a look at what stands there.
void Put(CoreNode& node, double seconds, double size) {
    const CMatrix4 pose = CMatrix4::Diagonal(size, size, size, 1);
    At(seconds, node, [&](TVL::CSnapshot& snapshot) { snapshot.SetWorldTransform(pose); });
}

// Metres; the rows stay as they are, but for a scale.
void Place(CoreNode& node, double seconds, double x, double scale = 1) {
    if (Makes("forgets the unit, and reads nothing")) return Put(node, seconds, 1);
    At(seconds, node, [&](TVL::CSnapshot& snapshot) {
        CMatrix4 pose = snapshot.GetWorldTransform();
        pose = CMatrix4::Diagonal(scale, scale, scale, 1) * pose;
        pose[3][0] = x;
        snapshot.SetWorldTransform(pose);
    });
}

class WrongCore final : public CoreInterface, public TVL::CoreElement, public TVL::NodeListener {
  public:
    explicit WrongCore(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {
        plugin = &record_;
        static TVL::Log log;
        static TVL::ErrorCode registry;
        if (Makes("leaves its log")) adaptor_.SetLog(&log);
        if (Makes("leaves its registry")) adaptor_.SetErrorCode(&registry);
        if (Makes("calls after detach")) late.adaptor = &adaptor_;
    }

    ~WrongCore() override {
        if (Makes("leaves with a group")) adaptor_.BeginUndoGroup("Left");
        if (Makes("leaves with a recording")) adaptor_.BeginRecordingUnkeyed({});
        EndTake();
        if (!Makes("leaves its nodes")) DestroyAll();
        if (!Makes("leaves without a flush")) adaptor_.FlushUndoBuffer();
    }

    void ShowCore(TVL::WindowHandle) override {
        adaptor_.BeginUndoGroup("Take");
        if (nodes_.empty()) MakeRig();
        Record();
        if (listens_ != Listens::kAlways)
            for (CoreNode* const node : nodes_)
                node->SetListener(listens_ == Listens::kLate ? this : nullptr);
        adaptor_.EndUndoGroup();
        UseLoansWrongly(Named("Root"), Named("Arm"));
        UseNodesWrongly(Named("Root"), Named("Arm"));
        BeginAndEndWrongly(Named("Root"));
        WriteWrongly(Named("Root"), Named("Arm"), Named("Eye"));
        if (Makes("does what is allowed")) DoWhatIsAllowed(Named("Root"), Named("Arm"));
        if (Makes("calls from a thread")) std::thread([this] { adaptor_.GetCurrentTime(); }).join();
        if (Makes("throws out of ShowCore")) throw std::runtime_error("no show");
    }

    std::vector<int> ListExtensions() override {
        if (Makes("does not list 43") || listens_ != Listens::kAlways) return {};
        return {TVL::kNodesBeingDeleted};
    }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kNodesBeingDeleted) DeleteRig();
        if (id == TVL::kSceneBeingSaved) GiveParts(*static_cast<XMLNode*>(argument));
        return 0;
    }

    XMLNode GetCoreState() override {
        XMLNode state("wrong", "");
        const bool isAllowed = Makes("does what is allowed");
        ++statesGiven_;
        if ((Makes("forgets its whole state") || isAllowed) && statesGiven_ == 1)
            state.AddChild(XMLNode("take", "1"));
        if (isAllowed && statesGiven_ == 2) throw std::runtime_error("no state");
        return state;
    }
    void SetCoreState(XMLNode state) override {
        for (const auto& part : state.children) {
            const XMLNode& info = part->Child("nodeinfo");
            auto stored = info.children.begin();
            for (TVL::CNode* found : adaptor_.ClaimNodes(record_.name, info)) {
                if (found) Claim(*static_cast<CoreNode*>(found), (*stored)->attributes["name"]);
                ++stored;
            }
        }
    }
    void ResetCore() override {
        EndTake();
        if (!Makes("keeps its nodes over a reset")) DestroyAll();
        nodes_.clear();
    }

    void OnNodeRemoved(TVL::CNode* node) override { std::erase(nodes_, node); }
    void OnNodeRestored(TVL::CNode* node) override {
        nodes_.push_back(static_cast<CoreNode*>(node));
    }

    bool IsCoreRunning() override { return isOpen_; }
    void StopCore() override {
        if (!Makes("records on after StopCore")) EndTake();
    }
    void NotifyTimeChanged(double) override {}
    TVL::Util::MessageNode* GetOptionNode(int, int) override {
        static TVL::Util::MessageNode forEver("button");
        return Makes("leaves its button") ? &forEver : &button_;
    }
    void BindOption(int, int) override {}
    void GetOptionValue(int, bool*) override {}

  private:
    void UseLoansWrongly(CoreNode& root, CoreNode& arm) {
        if (Makes("keeps a snapshot")) {
            CoreNode& spare = Spare(this);
            TVL::CSnapshot* const snapshot = spare.AcquireSnapshot(0);
            spare.Destroy();
            snapshot->GetTime();  // it does nothing more
        }
        if (Makes("releases to another node")) arm.ReleaseSnapshot(root.AcquireSnapshot(0));
        if (Makes("uses a released snapshot") || Makes("releases a snapshot twice")) {
            TVL::CSnapshot* const snapshot = root.AcquireSnapshot(0);
            root.ReleaseSnapshot(snapshot);
            if (Makes("uses a released snapshot")) snapshot->GetWorldTransform();
            if (Makes("releases a snapshot twice")) root.ReleaseSnapshot(snapshot);
        }
        if (Makes("keeps a snapshot node")) arm.GetParent();
        if (Makes("releases a snapshot node twice")) {
            TVL::CNode* const parent = arm.GetParent();
            parent->ReleaseNode(parent);
            parent->ReleaseNode(parent);
        }
    }

    void UseNodesWrongly(CoreNode& root, CoreNode& arm) {
        if (Makes("releases a real node")) root.ReleaseNode(&Spare(this));
        if (Makes("claims a real node")) root.Claim(this, "Once more");
        if (Makes("makes a node of nobody")) Spare(nullptr).Destroy();
        if (Makes("uses a destroyed node") || Makes("hangs a node below a destroyed one")) {
            CoreNode& spare = Spare(this);
            spare.Destroy();
            if (Makes("uses a destroyed node")) spare.GetName();
            if (Makes("hangs a node below a destroyed one")) root.SetParent(&spare);
        }
        if (Makes("deletes twice") || Makes("leaves without a flush")) {
            adaptor_.BeginUndoGroup("Delete");
            CoreNode& spare = Spare(this);
            spare.Delete(true);
            if (Makes("deletes twice")) spare.Delete(true);
            adaptor_.EndUndoGroup();
        }
        if (Makes("claims for nobody")) {
            CoreNode* const copy = arm.Clone(false);
            copy->Claim(nullptr, "Orphan")->Destroy();
            copy->ReleaseNode(copy);
        }
    }

    void BeginAndEndWrongly(CoreNode& root) {
        if (Makes("ends no group")) adaptor_.EndUndoGroup();
        if (Makes("forgets a group")) adaptor_.BeginUndoGroup("Forgotten");
        if (Makes("records on after StopCore")) OpenTake();
        if (Makes("ends no recording")) adaptor_.EndRecording();
        if (Makes("restores no focus")) adaptor_.RestoreFocus();
        if (Makes("keeps the focus")) adaptor_.RequestFocus();
        if (Makes("keeps a batch of selections"))
            root.HandleExtension(TVL::kBeginSelection, nullptr);
        if (Makes("adds a chunk outside a group")) adaptor_.AddUndoChunk(new Chunk);
        if (Makes("keeps a mesh over a recording")) {
            adaptor_.BeginRecordingUnkeyed({});
            TVL::CSnapshot_Mesh* const mesh = root.AcquireMeshSnapshot(0);
            adaptor_.EndRecording();
            root.ReleaseMeshSnapshot(mesh);
        }
    }

    void WriteWrongly(CoreNode& root, CoreNode& arm, CoreNode& eye) {
        if (Makes("writes a transform that is no number")) Place(root, 0, kNaN);
        if (Makes("writes a flat transform")) Put(root, 0, 0);
        if (Makes("forgets the unit")) Put(root, 0, 1);
        if (Makes("counts the unit twice")) Put(root, 0, 1 / kMetre / kMetre);
        if (Makes("asks at no time")) Place(root, kNaN, 0);
        if (Makes("goes to no time")) adaptor_.SetAnimationRange({0, kInfinity});
        if (Makes("colours from 0 to 255")) {
            TVL::CSnapshot_Helper* const look = root.AcquireHelperSnapshot();
            look->SetColor(0, 1, 255);
            root.ReleaseHelperSnapshot(look);
        }
        adaptor_.BeginRecordingUnkeyed({});
        for (int sample = 0; sample < 16; ++sample) {
            CoreNode& childThenParent = sample < 15 ? arm : root;
            if (Makes("writes child by child")) Place(childThenParent, TimeOf(sample % 15), sample);
            if (Makes("records backwards")) Place(eye, TimeOf(16 - sample), sample);
            if (Makes("records faster than the host counts")) Place(eye, sample * 5e-5, sample);
            if (Makes("records everything twice")) Put(eye, TimeOf(sample / 2), 1 / kMetre);
        }
        adaptor_.EndRecording();
    }

    // Each of these is near a mistake, and none.
    void DoWhatIsAllowed(CoreNode& root, CoreNode& arm) {
        adaptor_.SetLog(nullptr);
        adaptor_.AddUndoChunk(nullptr);
        root.ReleaseSnapshot(nullptr);
        root.ReleaseNode(nullptr);
        TVL::CNode* const parent = arm.GetParent();  // the root, which is the Core's already
        static_cast<CoreNode*>(parent)->Claim(this, "Root");
        parent->ReleaseNode(parent);

        adaptor_.BeginUndoGroup("Cancelled");
        adaptor_.CreateHelperNode(this, "Brief", nullptr, Triangle(), nullptr);
        adaptor_.CancelUndoGroup();
        adaptor_.BeginUndoGroup("Undone");
        adaptor_.CreateHelperNode(this, "Brief", nullptr, Triangle(), nullptr);
        adaptor_.EndUndoGroup();
        adaptor_.PerformUndo();

        // A snapshot over a flush, nodes that go in the group that made them, or twice
        // in two; the ends of a colour, a node that is scaled.
        TVL::CSnapshot* const kept = root.AcquireSnapshot(0.25);
        adaptor_.BeginUndoGroup("Allowed");
        Spare(this).Destroy();
        Spare(this).Delete(true);
        adaptor_.EndUndoGroup();
        CoreNode& spare = Spare(this);
        for (const char* const step : {"Delete", "Delete again"}) {
            adaptor_.BeginUndoGroup(step);
            spare.Delete(true);
            adaptor_.EndUndoGroup();
        }
        adaptor_.FlushUndoBuffer();
        root.ReleaseSnapshot(kept);
        TVL::CSnapshot_Helper* const look = root.AcquireHelperSnapshot();
        look->SetColor(0, 1, 0.5F);
        root.ReleaseHelperSnapshot(look);
        Place(root, 0, 0, 7);
        Place(root, 0, 0, 1 / 7.0);

        // A first sample that is corrected, the same moment by another sum, two writes in one loan.
        adaptor_.BeginRecordingUnkeyed({});
        for (int sample = 0; sample < 8; ++sample) {
            const double hair = sample % 2 * 1e-6;
            if (sample < 2) Put(root, TimeOf(0), 1 / kMetre);
            Place(root, TimeOf(sample / 2) + hair, 1);
            At(TimeOf(sample), arm, [](TVL::CSnapshot& snapshot) {
                const CMatrix4 pose = snapshot.GetLocalTransform();
                snapshot.SetLocalTransform(pose);
                snapshot.SetLocalTransform(pose);
            });
        }
        adaptor_.EndRecording();

        // A child that is written again behind its parent, or in its parent's space ahead of it; a
        // sample that is read and changed, a second pass behind a cut, a recording inside another.
        adaptor_.BeginRecordingUnkeyed({});
        adaptor_.BeginRecordingUnkeyed({});
        for (int frame = 0; frame < 4; ++frame) {
            Place(arm, TimeOf(frame), 1);
            Place(root, TimeOf(frame), frame);
            Place(arm, TimeOf(frame), 2);
            Place(arm, TimeOf(frame), 3);
        }
        adaptor_.EndRecording();
        arm.DeleteAnimationFrom(-1);
        root.DeleteAnimationFrom(-1);
        for (int frame = 0; frame < 4; ++frame) {
            At(TimeOf(frame), arm, [](TVL::CSnapshot& snapshot) {
                snapshot.SetLocalTransform(snapshot.GetLocalTransform());
            });
            Place(root, TimeOf(frame), frame);
        }
        adaptor_.EndRecording();
        EndTake();

        // A node that was hung below another one, and is not any more.
        adaptor_.BeginUndoGroup("Hung");
        Named("Eye").SetParent(&root);
        adaptor_.EndUndoGroup();
        adaptor_.PerformUndo();
        adaptor_.BeginRecordingUnkeyed({});
        for (int frame = 0; frame < 4; ++frame) {
            Place(Named("Eye"), TimeOf(frame), 1);
            Place(root, TimeOf(frame), frame);
        }
        adaptor_.EndRecording();
        OpenTake();
    }

    CoreNode& Named(const std::string& name) {
        const auto isIt = [&](CoreNode* node) { return node->GetNodeName() == name; };
        return **std::ranges::find_if(nodes_, isIt);
    }

    // A node that no other part of this Core knows of.
    CoreNode& Spare(TVL::CoreElement* owner) {
        const std::vector<CoreNode*> before = nodes_;
        TVL::CNode* const spare =
            adaptor_.CreateHelperNode(owner, "Spare", nullptr, Triangle(), owner ? this : nullptr);
        nodes_ = before;
        return *static_cast<CoreNode*>(spare);
    }

    void MakeRig() {
        TVL::NodeListener* const ear = listens_ == Listens::kLate ? nullptr : this;
        TVL::CNode* const root = adaptor_.CreateHelperNode(this, "Root", nullptr, Triangle(), ear);
        TVL::CNode* const arm = adaptor_.CreateHelperNode(this, "Arm", root, Triangle(), ear);
        TVL::CNode* const eye = adaptor_.CreateLensNode(this, "Eye", nullptr, ear);
        nodes_.clear();
        for (TVL::CNode* const node : {root, arm, eye})
            nodes_.push_back(static_cast<CoreNode*>(node));
        if (Makes("has two owners of one name") || Makes("does what is allowed"))
            adaptor_.CreateHelperNode(&namesake_, "Double", nullptr, Triangle(), nullptr);
    }

    void Record() {
        std::string first = "Root";
        std::string second = "Arm";
        if (Makes("writes children first")) std::swap(first, second);
        adaptor_.BeginRecording({this});
        for (int frame = 0; frame < 8; ++frame) {
            Place(Named(first), TimeOf(frame), frame * 0.1);
            Place(Named(second), TimeOf(frame), frame * 0.1 + 1);
            Aim(Named("Eye"), TimeOf(frame), 40 + frame);
        }
        adaptor_.EndRecording();
    }

    void Aim(CoreNode& eye, double seconds, double degrees) {
        TVL::CSnapshot_Lens* const lens = eye.AcquireLensSnapshot(seconds);
        if (!lens) return;
        lens->SetFieldOfView(Makes("writes a lens that is no number") ? kNaN : degrees);
        eye.ReleaseLensSnapshot(lens);
    }

    // A take that goes over several calls.
    void OpenTake() {
        if (std::exchange(isOpen_, true)) return;
        adaptor_.BeginUndoGroup("Long take");
        adaptor_.BeginRecordingUnkeyed({});
    }
    void EndTake() {
        if (!std::exchange(isOpen_, false)) return;
        adaptor_.EndRecording();
        adaptor_.EndUndoGroup();
    }

    void DeleteRig() {
        const bool isInGroup = !Makes("deletes outside a group at 43");
        if (isInGroup) adaptor_.BeginUndoGroup("Delete");
        for (CoreNode* node : std::vector<CoreNode*>(nodes_.rbegin(), nodes_.rend())) {
            node->Delete(true);
            std::erase(nodes_, node);
        }
        if (isInGroup && Makes("cancels at 43"))
            adaptor_.CancelUndoGroup();
        else if (isInGroup)
            adaptor_.EndUndoGroup();
    }

    void DestroyAll() {
        for (CoreNode* node : std::exchange(nodes_, {}))
            node->Destroy();
        for (TVL::CNode* node : adaptor_.GetNodes(&namesake_))
            static_cast<CoreNode*>(node)->Destroy();
    }

    void GiveParts(XMLNode& parts) {
        if (Makes("does what is allowed")) return;
        if (Makes("forgets an owner's state") && ++partsGiven_ > 1) return;
        XMLNode part("TVL_Plugin", "");
        part.AddChild(XMLNode("name", record_.name));
        XMLNode& nodes = part.AddChild(XMLNode("nodeinfo", ""));
        for (const CoreNode* node : nodes_)
            nodes.AddChild(XMLNode("node", "")).attributes["name"] = node->GetNodeName();
        parts.AddChild(XMLNode("masternode", "")).AddChild(part);
    }

    void Claim(CoreNode& found, const std::string& name) {
        CoreNode* const node = found.Claim(this, name);
        if (node) node->SetListener(this);
        if (node) nodes_.push_back(node);
        if (!Makes("keeps what it has claimed from")) found.ReleaseNode(&found);
    }

    [[maybe_unused]] Unaccounted unaccounted_;
    TVL::AdaptorInterface& adaptor_;
    TVL::PluginRecord record_{"Wrong"};
    Owner namesake_{"Wrong"};
    TVL::Util::MessageNode button_{"button"};
    std::vector<CoreNode*> nodes_;  // the adaptor's
    int statesGiven_ = 0;
    int partsGiven_ = 0;
    bool isOpen_ = false;

    enum class Listens { kAlways, kLate, kNot };
    const Listens listens_ = Makes("does not list 43, and listens late") ? Listens::kLate
                             : Makes("does not list 43, nor listens")    ? Listens::kNot
                                                                         : Listens::kAlways;
};

}  // namespace

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return new WrongCore(*adaptor);
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<WrongCore*>(core);
}
