#include <utility>

#include "headless/scene/listeners.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
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

// The hold of a deletion, unless it becomes part of one that is open. Whoever hears of the deletion
// can end that, which must not cost the user the nodes.
class DeletionStep {
  public:
    DeletionStep() { Renew(); }
    ~DeletionStep() {
        try {
            End();
        } catch (...) {  // behind the exception that is on its way
        }
    }
    DeletionStep(const DeletionStep&) = delete;
    DeletionStep& operator=(const DeletionStep&) = delete;

    void Renew() {
        if (theHold.Holding() || theHold.RestoreOrRedoing()) return;
        theHold.Begin();
        begun_ = true;
    }

    void End() {
        if (std::exchange(begun_, false) && theHold.Holding()) theHold.Accept("Delete");
    }

  private:
    bool begun_ = false;
};

}  // namespace

std::size_t Session::DeleteSelected() {
    if (SelectedNodes().empty()) return 0;
    DeletionStep step;
    const std::vector<NodePtr> nodes = AnnounceDeletion(SelectedNodes());
    if (!nodes.empty()) step.Renew();
    for (const NodePtr& node : nodes)
        TheScene().Delete(*node);
    step.End();
    return nodes.size();
}

}  // namespace headless
