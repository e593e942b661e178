#include <cmath>
#include <utility>

#include "headless/breaches/breach_book.h"
#include "headless/scene/listeners.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
#include "headless/scene/time_and_units.h"
#include "headless/session.h"
#include "host/hold.h"
#include "host/notify.h"

namespace headless {
namespace {

// The nodes that are still announced when everybody has been told, and still there. All stay alive
// meanwhile, whatever becomes of them, so that no other node comes to their addresses.
std::vector<NodePtr> AnnounceDeletion(const std::vector<SceneNode*>& nodes) {
    INodeTab table;
    std::vector<NodePtr> announced;
    for (SceneNode* node : nodes) {
        INode* const entry = node;
        table.Append(1, &entry);
        announced.push_back(node->shared_from_this());
    }
    Broadcast(NOTIFY_SEL_NODES_PRE_DELETE, &table);
    std::vector<NodePtr> remaining;
    for (int i = 0; i < table.Count(); ++i) {
        if (!TheScene().Contains(table[i])) continue;
        remaining.push_back(static_cast<SceneNode*>(table[i])->shared_from_this());
    }
    return remaining;
}

// The hold of an edit, unless it becomes part of one that is open. Whoever hears of the edit can
// end that, which must not cost the user the nodes.
class EditStep {
  public:
    explicit EditStep(const char* label) : label_(label) { Renew(); }
    ~EditStep() {
        try {
            End();
        } catch (...) {  // behind the exception that is on its way
        }
    }
    EditStep(const EditStep&) = delete;
    EditStep& operator=(const EditStep&) = delete;

    void Renew() {
        if (theHold.Holding() || theHold.RestoreOrRedoing()) return;
        theHold.Begin();
        begun_ = true;
    }

    void End() {
        if (std::exchange(begun_, false) && theHold.Holding()) theHold.Accept(label_);
    }

  private:
    const char* label_;
    bool begun_ = false;
};

}  // namespace

std::size_t Session::DeleteSelected() {
    if (SelectedNodes().empty()) return 0;
    EditStep step("Delete");
    const std::vector<NodePtr> nodes = AnnounceDeletion(SelectedNodes());
    if (!nodes.empty()) step.Renew();
    for (const NodePtr& node : nodes)
        TheScene().Delete(*node);
    step.End();
    return nodes.size();
}

bool Session::MoveNode(std::uint32_t handle, const Point3& place) {
    SceneNode* const node = TheScene().Find(handle);
    const bool isPlace = std::isfinite(place.x) && std::isfinite(place.y) && std::isfinite(place.z);
    if (!node || !isPlace || theHold.RestoreOrRedoing()) return false;
    const HostEvent event("the move of node", static_cast<int>(handle));
    const NodePtr kept = node->shared_from_this();
    EditStep step("Move");
    Matrix3 world = node->GetNodeTM(CurrentTime(), nullptr);
    world.SetRow(3, place);
    world.ValidateFlags();
    node->SetNodeTM(CurrentTime(), world);
    step.End();
    return true;
}

bool Session::LinkNode(std::uint32_t handle, std::uint32_t parent) {
    SceneNode* const node = TheScene().Find(handle);
    SceneNode* const above = parent == 0 ? TheScene().Root() : TheScene().Find(parent);
    if (!node || !above || above->HangsBelow(*node) || theHold.RestoreOrRedoing()) return false;
    const HostEvent event("the link of node", static_cast<int>(handle));
    const NodePtr kept = node->shared_from_this();
    EditStep step("Link");
    above->AttachChild(node, 1);
    step.End();
    return true;
}

}  // namespace headless
