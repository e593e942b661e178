#include "nodes/node_watch.h"

#include "nodes/max_node.h"

NodeWatch::NodeWatch(CMAXNode* watched) : node_(watched) {
    if (node_) node_->watches.push_back(this);
}

NodeWatch::~NodeWatch() {
    if (node_) std::erase(node_->watches, this);
}
