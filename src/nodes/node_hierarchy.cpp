#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "nodes/node_deletion.h"
#include "nodes/node_list.h"
#include "tvl/log.h"

TVL::CNode* CMAXNode::GetParent() {
    return AnswerCore("GetParent", [&]() -> TVL::CNode* {
        INode* const host = HostNode();
        INode* const parent = host ? host->GetParentNode() : nullptr;
        if (!parent || parent->IsRootNode()) return nullptr;
        return new CMAXNode(this, parent);
    });
}

int CMAXNode::GetChildCount() {
    return AnswerCore("GetChildCount", [&] {
        INode* const host = HostNode();
        return host ? host->NumberOfChildren() : 0;
    });
}

TVL::CNode* CMAXNode::GetChild(int index) {
    return AnswerCore("GetChild", [&]() -> TVL::CNode* {
        INode* const host = HostNode();
        if (!host || index < 0 || index >= host->NumberOfChildren()) return nullptr;
        INode* const child = host->GetChildNode(index);
        return child ? new CMAXNode(this, child) : nullptr;
    });
}

void CMAXNode::ReleaseNode(TVL::CNode* node) {
    if (node) static_cast<CMAXNode*>(node)->Destroy();
}

namespace {

bool HangsBelow(INode* node, const INode* above) {
    while (node && node != above)
        node = node->GetParentNode();
    return node != nullptr;
}

}  // namespace

// A node that would come to hang below itself stays where it is.
void CMAXNode::SetParent(TVL::CoreNode* parent) {
    AnswerCore("SetParent", [&] {
        INode* const host = HostNode();
        if (!parent) {
            if (host) host->Detach(0, 1);
            return;
        }
        TVL::Log log("Setting parent for " + name, TVL::Log::kNotice);
        log.WriteValue("new parent", parent->GetNodeName());
        INode* const parentHost = static_cast<CMAXNode*>(parent)->HostNode();
        if (!parentHost) {
            log.Write("Invalid parent node");
            return;
        }
        log.WriteValue("setting parent...", host);
        if (!host) return;
        if (!HangsBelow(parentHost, host)) parentHost->AttachChild(host, 1);
        log.Write("parent set");
    });
}

TVL::CoreNode* CMAXNode::Clone(bool withHierarchy) {
    return AnswerCore("Clone", [&] { return CloneHostNode(withHierarchy); });
}

// Copies that the Core cannot be given go again.
CMAXNode* CMAXNode::CloneHostNode(bool withHierarchy, const CMAXNode* parent) {
    INode* host = HostNode();
    if (!host) return nullptr;
    INodeTab originals;
    originals.Append(1, &host);
    INodeTab copies;
    ++AdaptorNodes().arrivals;
    GetCOREInterface()->CloneNodes(originals, Point3(0, 0, 0), withHierarchy, NODE_COPY, nullptr,
                                   &copies);
    if (copies.Count() == 0 || !copies[0]) return nullptr;
    try {
        auto copy = std::make_unique<CMAXNode>(this, copies[0]);
        INode* const above = parent ? parent->HostNode() : nullptr;
        if (above) above->AttachChild(copies[0], 0);
        return copy.release();
    } catch (...) {
        for (int index = copies.Count(); index-- > 0;)
            TakeBackHostNode(copies[index]);
        throw;
    }
}
