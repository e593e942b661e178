#include "nodes/max_node.h"

// Meshes, lenses and curves are not lent by this adaptor: every node answers as one that has none.

TVL::CSnapshot_Mesh* CMAXNode::AcquireMeshSnapshot(double) {
    return nullptr;
}

TVL::CSnapshot_Lens* CMAXNode::AcquireLensSnapshot(double) {
    return nullptr;
}

TVL::CSnapshot_Shape* CMAXNode::AcquireShapeSnapshot(double) {
    return nullptr;
}

void CMAXNode::ReleaseMeshSnapshot(TVL::CSnapshot_Mesh*) {}

void CMAXNode::ReleaseLensSnapshot(TVL::CSnapshot_Lens*) {}

void CMAXNode::ReleaseShapeSnapshot(TVL::CSnapshot_Shape*) {}
