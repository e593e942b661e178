#include "nodes/max_node.h"

#include <utility>

#include "core_link/core_answer.h"
#include "nodes/node_lifetime.h"
#include "nodes/node_names.h"
#include "nodes/snapshots.h"
#include "tvl/log.h"

constinit LiveInstances<CMAXNode> CMAXNode::liveInstances;

CMAXNode::CMAXNode(bool snapshot, INode* host) : isSnapshot(snapshot), hostNode(host) {
    liveInstances.Append(*this);
}

// What fails below leaves a whole node, which its destructor takes out of every list.

CMAXNode::CMAXNode(TVL::CoreElement* nodeOwner, std::string nodeName, INode* parentHost,
                   INode* host)
    : CMAXNode(false, host) {
    name = std::move(nodeName);
    owner = nodeOwner;
    if (parentHost && host) parentHost->AttachChild(host, 1);
    ListNode(this);
}

CMAXNode::CMAXNode(CMAXNode* reachedFrom, INode* host) : CMAXNode(true, host) {
    if (reachedFrom) JoinSource(*reachedFrom);
    if (const CMAXNode* real = FindRealNode(host)) {
        name = real->name;
        owner = real->owner;
    } else {
        name = NameInScene(HostNode());
    }
}

CMAXNode::~CMAXNode() {
    TVL::Log log("Deconstructing node", TVL::Log::kNotice);
    log.WriteValue("name", name);
    if (isSnapshot)
        log.Write("node is a snapshot");
    else
        UnlistNode(this);
    EmptyWatches();
    LeaveSource();
    LoseReached();
    liveInstances.Remove(*this);
    transformPool.Empty("Encountered still acquired snapshot");
    helperPool.Empty("Encountered still acquired helper snapshot");
    meshPool.Empty("Encountered still acquired mesh snapshot");
    lensPool.Empty("Encountered still acquired lens snapshot");
    shapePool.Empty("Encountered still acquired shape snapshot");
}

void CMAXNode::Destroy() {
    delete this;
}

void CMAXNode::Show() {
    AnswerCore("Show", [&] {
        if (INode* host = HostNode()) host->Hide(false);
    });
}

void CMAXNode::Hide() {
    AnswerCore("Hide", [&] {
        if (INode* host = HostNode()) host->Hide(true);
    });
}

bool CMAXNode::IsVisible() {
    return AnswerCore("IsVisible", [&] {
        INode* const host = HostNode();
        return host && !host->IsHidden(0, false);
    });
}

void CMAXNode::SetName(std::string hostName) {
    AnswerCore("SetName", [&] {
        if (INode* host = HostNode()) host->SetName(CutHostName(std::move(hostName)).c_str());
    });
}

std::string CMAXNode::GetName() {
    return AnswerCore("GetName", [&]() -> std::string { return NameInScene(HostNode()); });
}

bool CMAXNode::IsSameNode(TVL::CoreNode* other) {
    return AnswerCore("IsSameNode", [&]() -> bool {
        INode* const mine = HostNode();
        INode* const theirs = other ? static_cast<CMAXNode*>(other)->HostNode() : nullptr;
        return mine && theirs && mine->GetHandle() == theirs->GetHandle();
    });
}

TVL::CoreNode* CMAXNode::Claim(TVL::CoreElement* newOwner, std::string newName) {
    return AnswerCore("Claim", [&]() -> TVL::CoreNode* {
        INode* const host = HostNode();
        if (!isSnapshot || !host || FindRealNode(host)) return nullptr;
        ++AdaptorNodes().lostClaims;  // until it is there
        CMAXNode* const claimed = new CMAXNode(newOwner, std::move(newName), nullptr, host);
        --AdaptorNodes().lostClaims;
        return claimed;
    });
}

// The node is the caller's from here on, so no undo record may list, hold or end it any more. A
// real node has no source.
void CMAXNode::Unclaim() {
    if (isSnapshot) return;
    isSnapshot = true;
    UnlistNode(this);
    EmptyWatches();
    owner = nullptr;
}

bool CMAXNode::ForgetCore() {
    const bool knowsCore = !std::exchange(isForgotten, true) || owner || listener;
    owner = nullptr;
    sourceOwner = nullptr;
    listener = nullptr;
    return knowsCore;
}

std::vector<TVL::CNode*> GiveAway(NewNodes nodes) {
    std::vector<TVL::CNode*> given;
    given.reserve(nodes.size());
    for (std::unique_ptr<CMAXNode>& node : nodes)
        given.push_back(node.release());
    return given;
}

void CMAXNode::EmptyWatches() {
    for (NodeWatch* watch : watches)
        watch->node_ = nullptr;
    watches.clear();
}

void CMAXNode::JoinSource(CMAXNode& reachedFrom) {
    source = &reachedFrom;
    sourceOwner = reachedFrom.owner;
    olderOfSource = reachedFrom.newestReached;
    if (olderOfSource) olderOfSource->newerOfSource = this;
    reachedFrom.newestReached = this;
}

void CMAXNode::LeaveSource() {
    if (!source) return;
    CMAXNode*& newest = static_cast<CMAXNode*>(source)->newestReached;
    if (olderOfSource) olderOfSource->newerOfSource = newerOfSource;
    (newerOfSource ? newerOfSource->olderOfSource : newest) = olderOfSource;
}

// They go on counting with the owner that this node had when they were made.
void CMAXNode::LoseReached() {
    for (CMAXNode* node = std::exchange(newestReached, nullptr); node;) {
        node->source = nullptr;
        node->newerOfSource = nullptr;
        node = std::exchange(node->olderOfSource, nullptr);
    }
}
