#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "tvl/log.h"

TVL::CNode* CMAXNode::GetParent() {
    INode* const host = HostNode();
    INode* const parent = host ? host->GetParentNode() : nullptr;
    if (!parent || parent->IsRootNode()) return nullptr;
    return new CMAXNode(this, parent);
}

int CMAXNode::GetChildCount() {
    INode* const host = HostNode();
    return host ? host->NumberOfChildren() : 0;
}

TVL::CNode* CMAXNode::GetChild(int index) {
    INode* const host = HostNode();
    if (!host || index < 0 || index >= host->NumberOfChildren()) return nullptr;
    INode* const child = host->GetChildNode(index);
    return child ? new CMAXNode(this, child) : nullptr;
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
}

TVL::CoreNode* CMAXNode::Clone(bool withHierarchy) {
    return CloneHostNode(withHierarchy);
}

CMAXNode* CMAXNode::CloneHostNode(bool withHierarchy) {
    INode* host = HostNode();
    if (!host) return nullptr;
    INodeTab originals;
    originals.Append(1, &host);
    INodeTab copies;
    ++AdaptorNodes().arrivals;
    GetCOREInterface()->CloneNodes(originals, Point3(0, 0, 0), withHierarchy, NODE_COPY, nullptr,
                                   &copies);
    if (copies.Count() == 0 || !copies[0]) return nullptr;
    return new CMAXNode(this, copies[0]);
}
