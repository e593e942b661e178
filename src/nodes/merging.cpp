#include <array>
#include <unordered_set>
#include <utility>

#include "host/interface.h"
#include "host/path_config.h"
#include "nodes/host_node_link.h"
#include "nodes/max_node.h"
#include "nodes/node_creation.h"
#include "nodes/node_names.h"
#include "tvl/log.h"
#include "undo/undo_groups.h"

namespace {

constexpr const char* kHoldLabel = "tmp";  // of what the closed hold has so far

constexpr const char* kNotMerged = "Merge failed. The scene could not be merged successfully";
constexpr const char* kDamagedFile = "Merge failed, possible corrupt scene file: ";

constexpr DWORD kDirectoryCapacity = 1024;  // bytes

// The merge calls back, and nodes can go meanwhile, so that they are held by links.
std::vector<HostNodeLink> GatherSelection(Interface& host, TVL::Log& log) {
    log.Write("Gathering currently selected nodes");
    std::vector<HostNodeLink> selected;
    for (int index = 0; index < host.GetSelNodeCount(); ++index) {
        INode* const node = host.GetSelNode(index);
        if (!node) continue;
        log.WriteValue("gathered node", node->GetName());
        selected.emplace_back(node);
    }
    return selected;
}

// Empty if it is longer than the buffer, of which nothing can be read then.
std::string CurrentDirectory() {
    std::array<char, kDirectoryCapacity> buffer{};
    const DWORD length = GetCurrentDirectoryA(kDirectoryCapacity, buffer.data());
    return std::string(buffer.data(), length < kDirectoryCapacity ? length : 0);
}

void AddCurrentDirectory(TVL::Log& log) {
    const std::string directory = CurrentDirectory();
    log.WriteValue("Adding map dir", directory);
    if (directory.empty()) return;
    IPathConfigMgr::GetPathConfigMgr()->AddSessionMapDir(directory, false);
}

// A damaged file makes the host throw.
void MergeFile(Interface& host, const std::string& path, TVL::Log& log) {
    log.Write("Merging file...");
    try {
        const int merged = host.MergeFromFile(path.c_str(), 1, 1, 1, MERGE_DUPS_PROMPT, nullptr,
                                              MERGE_DUP_MTL_PROMPT, MERGE_REPARENT_PROMPT);
        if (merged == 0) TVL::Log(kNotMerged, TVL::Log::kWarning);
    } catch (...) {
        TVL::Log(kDamagedFile + path, TVL::Log::kWarning);
    }
}

// The nodes found so far, with null for each that the host does not know any more.
class MergedNodes {
  public:
    void AddWithAncestors(INode* node, TVL::Log& log) {
        for (; node && !node->IsRootNode(); node = node->GetParentNode()) {
            if (wrapped_.contains(node)) continue;
            log.WriteValue("Adding node to list", node->GetName());
            nodes_.push_back(NodeFor(NodeReference(*node)));
            if (nodes_.back()) wrapped_.insert(node);
        }
    }

    NewNodes Take() { return std::move(nodes_); }

  private:
    NewNodes nodes_;
    std::unordered_set<const INode*> wrapped_;
};

NewNodes GatherMerged(Interface& host, TVL::Log& log) {
    log.Write("Gathering merged nodes");
    MergedNodes merged;
    for (int index = 0; index < host.GetSelNodeCount(); ++index) {
        merged.AddWithAncestors(host.GetSelNode(index), log);
    }
    return merged.Take();
}

void SelectAgain(Interface& host, const std::vector<HostNodeLink>& selected, TVL::Log& log) {
    log.Write("Resetting selection set to previous values");
    INodeTab table;
    for (const HostNodeLink& link : selected) {
        if (INode* const node = link.Get()) table.Append(1, &node);
    }
    host.ClearNodeSelection(0);
    host.SelectNodeTab(table, 1, 1);
}

}  // namespace

std::vector<TVL::CNode*> MergeModels(const std::string& path) {
    TVL::Log log("Merging models from file", TVL::Log::kNotice);
    log.WriteValue("Merge file", path);
    const OutsideHold outsideHold(kHoldLabel);
    Interface& host = *GetCOREInterface();
    const std::vector<HostNodeLink> selected = GatherSelection(host, log);
    log.Write("Clearing node selection");
    host.ClearNodeSelection(0);
    NewNodes merged;
    try {
        AddCurrentDirectory(log);
        MergeFile(host, path, log);
        merged = GatherMerged(host, log);
    } catch (...) {
        SelectAgain(host, selected, log);
        throw;
    }
    SelectAgain(host, selected, log);
    return GiveAway(std::move(merged));
}
