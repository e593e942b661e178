// A Core that records a rig of two helpers and a camera, and makes one mistake in doing so: see
// mistakes.h. Each press of the button is a take.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "tests/support/mistakes/mistakes.h"
#include "tvl/core_interface.h"

namespace {

using TVL::CMatrix4;
using TVL::CoreNode;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool Makes(std::string_view mistake) {
    static const char* const variable = std::getenv(mistakes::kVariable);
    return variable && mistake == variable;
}

struct Owner final : TVL::CoreElement {
    explicit Owner(std::string name) : record{std::move(name)} { plugin = &record; }
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
    mesh.faces = {0, 1, 2};
    return mesh;
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
        adaptor_.EndUndoGroup();
        const auto act = Acts().find(Mistake());
        if (act != Acts().end()) act->second(*this);
    }

    void NotifyTimeChanged(double) override {
        if (Makes("throws out of NotifyTimeChanged")) throw std::runtime_error("no time");
    }

    std::vector<int> ListExtensions() override {
        if (Makes("does not list 43")) return {TVL::kSceneBeingSaved};
        return {TVL::kNodesBeingDeleted, TVL::kSceneBeingSaved};
    }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kNodesBeingDeleted) DeleteRig();
        if (id == TVL::kSceneBeingSaved) GiveParts(*static_cast<XMLNode*>(argument));
        return 0;
    }

    XMLNode GetCoreState() override {
        XMLNode state("wrong", "");
        const bool isFirst = ++statesGiven_ == 1;
        if (Makes("forgets its whole state") && isFirst) state.AddChild(XMLNode("take", "1"));
        if (Makes("does what is allowed") && !isFirst)
            throw std::runtime_error("no state to be had");
        return state;
    }
    void SetCoreState(XMLNode state) override {
        for (const auto& part : state.children) {
            const XMLNode& info = part->Child("nodeinfo");
            const std::vector<TVL::CNode*> found = adaptor_.ClaimNodes(record_.name, info);
            for (std::size_t index = 0; index < found.size(); ++index)
                if (found[index])
                    Claim(*static_cast<CoreNode*>(found[index]),
                          info.children[index]->attributes["name"]);
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
    TVL::Util::MessageNode* GetOptionNode(int, int) override { return nullptr; }
    void BindOption(int, int) override {}
    void GetOptionValue(int, bool*) override {}

  private:
    using Act = void (*)(WrongCore&);

    static std::string Mistake() {
        const char* const variable = std::getenv(mistakes::kVariable);
        return variable ? variable : "";
    }
    static const std::map<std::string, Act>& Acts();

    CoreNode* Make(const std::string& name, TVL::CNode* parent, const TVL::CMesh& mesh) {
        return static_cast<CoreNode*>(adaptor_.CreateHelperNode(this, name, parent, mesh, this));
    }

    CoreNode& Named(const std::string& name) {
        const auto isIt = [&](CoreNode* node) { return node->GetNodeName() == name; };
        return **std::ranges::find_if(nodes_, isIt);
    }

    // A node that no other part of this Core knows of.
    CoreNode& Spare() {
        const std::vector<CoreNode*> before = nodes_;
        CoreNode* const spare = static_cast<CoreNode*>(
            adaptor_.CreateHelperNode(this, "Spare", nullptr, Triangle(), nullptr));
        nodes_ = before;
        return *spare;
    }

    void MakeRig() {
        CoreNode* const root = Make("Root", nullptr, Triangle());
        Make("Arm", root, Triangle());
        adaptor_.CreateLensNode(this, "Eye", nullptr, this);
    }

    // Metres; the rows stay as they are.
    void Place(CoreNode& node, double seconds, double x) {
        TVL::CSnapshot* const snapshot = node.AcquireSnapshot(seconds);
        if (!snapshot) return;
        CMatrix4 pose = snapshot->GetWorldTransform();
        pose[3][0] = x;
        snapshot->SetWorldTransform(pose);
        node.ReleaseSnapshot(snapshot);
    }

    static double TimeOf(int frame) { return frame / 30.0 + 1e-6; }

    void Aim(int frame) {
        CoreNode& eye = Named("Eye");
        TVL::CSnapshot_Lens* const lens = eye.AcquireLensSnapshot(TimeOf(frame));
        if (!lens) return;
        lens->SetFieldOfView(Makes("writes a lens that is no number") ? kNaN : 40 + frame);
        eye.ReleaseLensSnapshot(lens);
    }

    void Record() {
        std::string first = "Root";
        std::string second = "Arm";
        if (Makes("writes children first")) std::swap(first, second);
        adaptor_.BeginRecording({this});
        for (int frame = 0; frame < 8; ++frame) {
            Place(Named(first), TimeOf(frame), frame * 0.1);
            Place(Named(second), TimeOf(frame), frame * 0.1 + 1);
            Aim(frame);
        }
        adaptor_.EndRecording();
    }

    // Each of these is near a mistake, and none.
    void DoWhatIsAllowed();

    // What goes over several calls.
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
        const bool isOutside = Makes("deletes outside a group at 43");
        if (!isOutside) adaptor_.BeginUndoGroup("Delete");
        for (CoreNode* node : std::vector<CoreNode*>(nodes_.rbegin(), nodes_.rend())) {
            if (isOutside) std::erase(nodes_, node);
            node->Delete(true);
        }
        if (isOutside) return;
        if (Makes("cancels at 43"))
            adaptor_.CancelUndoGroup();
        else
            adaptor_.EndUndoGroup();
    }

    void DestroyAll() {
        for (CoreNode* node : std::exchange(nodes_, {}))
            node->Destroy();
    }

    void GiveParts(XMLNode& parts) {
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

    TVL::AdaptorInterface& adaptor_;
    TVL::PluginRecord record_{"Wrong"};
    std::vector<CoreNode*> nodes_;  // the adaptor's
    int statesGiven_ = 0;
    int partsGiven_ = 0;
    bool isOpen_ = false;
    Owner namesake_{"Wrong"};
};

// A pose of the node's at a time, changed and written back outside a recording.
void Rewrite(CoreNode& node, const std::function<void(CMatrix4&)>& change) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(0);
    CMatrix4 pose = snapshot->GetWorldTransform();
    change(pose);
    snapshot->SetWorldTransform(pose);
    node.ReleaseSnapshot(snapshot);
}

void Scale(CMatrix4& pose, double factor) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            pose[row][column] *= factor;
}

// Writes without a look at what is there.
void Put(CoreNode& node, double seconds, const CMatrix4& pose) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(seconds);
    snapshot->SetWorldTransform(pose);
    node.ReleaseSnapshot(snapshot);
}

CMatrix4 PoseOf(CoreNode& node) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(0);
    const CMatrix4 pose = snapshot->GetWorldTransform();
    node.ReleaseSnapshot(snapshot);
    return pose;
}

void WrongCore::DoWhatIsAllowed() {
    CoreNode& root = Named("Root");
    CoreNode& arm = Named("Arm");
    adaptor_.SetLog(nullptr);
    adaptor_.AddUndoChunk(nullptr);
    root.ReleaseSnapshot(nullptr);
    root.ReleaseNode(nullptr);
    TVL::CNode* const parent = arm.GetParent();  // Root, which is the Core's already
    static_cast<CoreNode*>(parent)->Claim(this, "Root");
    parent->ReleaseNode(parent);

    // A snapshot over a flush, a node that goes in the group that made it, one that is scaled.
    TVL::CSnapshot* const kept = root.AcquireSnapshot(0.25);
    adaptor_.BeginUndoGroup("Allowed");
    const std::vector<CoreNode*> before = nodes_;
    Make("Brief", &root, Triangle())->Destroy();
    nodes_ = before;
    Make("Doomed", &root, Triangle())->Delete(true);
    adaptor_.EndUndoGroup();
    adaptor_.FlushUndoBuffer();
    root.ReleaseSnapshot(kept);
    Rewrite(Named("Eye"), [](CMatrix4& pose) { Scale(pose, 7); });
    Rewrite(Named("Eye"), [](CMatrix4& pose) { Scale(pose, 1 / 7.0); });

    // A child that is written again behind its parent, or in its parent's space ahead of it; a
    // sample that is read and changed, and a second pass behind a cut.
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
        TVL::CSnapshot* const snapshot = arm.AcquireSnapshot(TimeOf(frame));
        snapshot->SetLocalTransform(snapshot->GetLocalTransform());
        arm.ReleaseSnapshot(snapshot);
        Place(root, TimeOf(frame), frame);
    }
    adaptor_.EndRecording();
    EndTake();
    OpenTake();
}

// What is done behind a take.
const std::map<std::string, WrongCore::Act>& WrongCore::Acts() {
    static const std::map<std::string, Act> acts = {
        {"uses a released snapshot",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             TVL::CSnapshot* const snapshot = root.AcquireSnapshot(0);
             root.ReleaseSnapshot(snapshot);
             snapshot->GetWorldTransform();
         }},
        {"releases a snapshot twice",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             TVL::CSnapshot* const snapshot = root.AcquireSnapshot(0);
             root.ReleaseSnapshot(snapshot);
             root.ReleaseSnapshot(snapshot);
         }},
        {"releases a snapshot node twice",
         [](WrongCore& core) {
             TVL::CNode* const parent = core.Named("Arm").GetParent();
             parent->ReleaseNode(parent);
             parent->ReleaseNode(parent);
         }},
        {"releases to another node",
         [](WrongCore& core) {
             core.Named("Arm").ReleaseSnapshot(core.Named("Root").AcquireSnapshot(0));
         }},
        {"keeps a snapshot", [](WrongCore& core) { core.Named("Root").AcquireSnapshot(0); }},
        {"keeps a snapshot node", [](WrongCore& core) { core.Named("Arm").GetParent(); }},
        {"uses a destroyed node",
         [](WrongCore& core) {
             CoreNode& spare = core.Spare();
             spare.Destroy();
             spare.GetName();
         }},
        {"hangs a node below a destroyed one",
         [](WrongCore& core) {
             CoreNode& spare = core.Spare();
             spare.Destroy();
             core.Named("Root").SetParent(&spare);
         }},
        {"releases a real node",
         [](WrongCore& core) { core.Named("Root").ReleaseNode(&core.Spare()); }},
        {"claims a real node",
         [](WrongCore& core) { core.Named("Root").Claim(&core, "Once more"); }},
        {"deletes twice",
         [](WrongCore& core) {
             core.adaptor_.BeginUndoGroup("Delete");
             CoreNode* const doomed = core.Make("Doomed", nullptr, Triangle());
             doomed->Delete(true);
             doomed->Delete(true);
             core.adaptor_.EndUndoGroup();
         }},
        {"makes a node of nobody",
         [](WrongCore& core) {
             TVL::CNode* const orphan =
                 core.adaptor_.CreateHelperNode(nullptr, "Orphan", nullptr, Triangle(), nullptr);
             if (orphan) static_cast<CoreNode*>(orphan)->Destroy();
         }},
        {"claims for nobody",
         [](WrongCore& core) {
             CoreNode* const copy = core.Named("Arm").Clone(false);
             CoreNode* const orphan = copy->Claim(nullptr, "Orphan");
             if (orphan) orphan->Destroy();
             copy->ReleaseNode(copy);
         }},
        {"has two owners of one name",
         [](WrongCore& core) {
             TVL::CNode* const node = core.adaptor_.CreateHelperNode(&core.namesake_, "Other",
                                                                     nullptr, Triangle(), nullptr);
             static_cast<CoreNode*>(node)->Destroy();
         }},
        {"leaves without a flush",
         [](WrongCore& core) {
             core.adaptor_.BeginUndoGroup("Delete");
             core.Make("Doomed", nullptr, Triangle())->Delete(true);
             core.adaptor_.EndUndoGroup();
         }},
        {"ends no group", [](WrongCore& core) { core.adaptor_.EndUndoGroup(); }},
        {"forgets a group", [](WrongCore& core) { core.adaptor_.BeginUndoGroup("Forgotten"); }},
        {"records on after StopCore", [](WrongCore& core) { core.OpenTake(); }},
        {"ends no recording", [](WrongCore& core) { core.adaptor_.EndRecording(); }},
        {"restores no focus", [](WrongCore& core) { core.adaptor_.RestoreFocus(); }},
        {"keeps the focus", [](WrongCore& core) { core.adaptor_.RequestFocus(); }},
        {"keeps a batch of selections",
         [](WrongCore& core) {
             core.Named("Root").HandleExtension(TVL::kBeginSelection, nullptr);
         }},
        {"keeps a mesh over a recording",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             core.adaptor_.BeginRecordingUnkeyed({});
             TVL::CSnapshot_Mesh* const mesh = root.AcquireMeshSnapshot(0);
             core.adaptor_.EndRecording();
             root.ReleaseMeshSnapshot(mesh);
         }},
        {"adds a chunk outside a group",
         [](WrongCore& core) { core.adaptor_.AddUndoChunk(new Chunk); }},
        {"writes child by child",
         [](WrongCore& core) {
             core.adaptor_.BeginRecordingUnkeyed({});
             for (const char* const name : {"Arm", "Root"})
                 for (int frame = 0; frame < 4; ++frame)
                     core.Place(core.Named(name), TimeOf(frame), frame);
             core.adaptor_.EndRecording();
         }},
        {"writes a transform that is no number",
         [](WrongCore& core) {
             Rewrite(core.Named("Root"), [](CMatrix4& pose) { pose[3][1] = kNaN; });
         }},
        {"gives a mesh with a vertex that is no number",
         [](WrongCore& core) {
             TVL::CMesh mesh = Triangle();
             mesh.vertices[1][1] = kNaN;
             core.Make("Bad", nullptr, mesh)->Destroy();
         }},
        {"writes a flat transform",
         [](WrongCore& core) {
             Rewrite(core.Named("Root"), [](CMatrix4& pose) { Scale(pose, 0); });
         }},
        {"forgets the unit",
         [](WrongCore& core) {
             Rewrite(core.Named("Root"), [](CMatrix4& pose) { pose = CMatrix4::Identity(); });
         }},
        {"counts the unit twice",
         [](WrongCore& core) {
             Rewrite(core.Named("Root"), [](CMatrix4& pose) { Scale(pose, 1 / 39.37); });
         }},
        {"gives a face without a vertex",
         [](WrongCore& core) {
             TVL::CMesh mesh = Triangle();
             mesh.faces[2] = 3;
             core.Make("Bad", nullptr, mesh)->Destroy();
         }},
        {"gives half a face",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             TVL::CMesh mesh = Triangle();
             mesh.faces.push_back(0);
             TVL::CSnapshot_Helper* const look = root.AcquireHelperSnapshot();
             look->SetMesh(mesh);
             root.ReleaseHelperSnapshot(look);
         }},
        {"asks at no time",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             root.ReleaseSnapshot(root.AcquireSnapshot(kNaN));
         }},
        {"goes to no time",
         [](WrongCore& core) {
             core.adaptor_.SetAnimationRange({0, std::numeric_limits<double>::infinity()});
         }},
        {"records backwards",
         [](WrongCore& core) {
             core.adaptor_.BeginRecordingUnkeyed({});
             for (int frame = 4; frame > 0; --frame)
                 core.Place(core.Named("Eye"), TimeOf(frame), frame);
             core.adaptor_.EndRecording();
         }},
        {"records faster than the host counts",
         [](WrongCore& core) {
             core.adaptor_.BeginRecordingUnkeyed({});
             for (int sample = 0; sample < 20; ++sample)
                 core.Place(core.Named("Eye"), sample * 1e-5, sample);
             core.adaptor_.EndRecording();
         }},
        {"records everything twice",
         [](WrongCore& core) {
             CoreNode& eye = core.Named("Eye");
             const CMatrix4 pose = PoseOf(eye);
             core.adaptor_.BeginRecordingUnkeyed({});
             for (int half = 0; half < 8; ++half)
                 Put(eye, TimeOf(half / 2), pose);
             core.adaptor_.EndRecording();
         }},
        {"colours from 0 to 255",
         [](WrongCore& core) {
             CoreNode& root = core.Named("Root");
             TVL::CSnapshot_Helper* const look = root.AcquireHelperSnapshot();
             look->SetColor(0, 1, 255);
             root.ReleaseHelperSnapshot(look);
         }},
        {"calls from a thread",
         [](WrongCore& core) { std::thread([&] { core.adaptor_.GetCurrentTime(); }).join(); }},
        {"throws out of ShowCore", [](WrongCore&) { throw std::runtime_error("no show"); }},
        {"does what is allowed", [](WrongCore& core) { core.DoWhatIsAllowed(); }},
    };
    return acts;
}

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
