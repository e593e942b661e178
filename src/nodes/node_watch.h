#pragma once

class CMAXNode;

// A pointer to a node that reads as null once the node has died.
class NodeWatch {
  public:
    explicit NodeWatch(CMAXNode* watched);
    ~NodeWatch();
    NodeWatch(const NodeWatch&) = delete;
    NodeWatch& operator=(const NodeWatch&) = delete;

    CMAXNode* Get() const { return node_; }

  private:
    friend class CMAXNode;
    CMAXNode* node_;
};
