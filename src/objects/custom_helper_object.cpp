#include "objects/custom_helper_object.h"

#include "host/node.h"
#include "objects/mesh_exchange.h"

constinit LiveInstances<CustomHelperObject> CustomHelperObject::liveInstances;

CustomHelperObject::CustomHelperObject() {
    liveInstances.Append(*this);
}

CustomHelperObject::~CustomHelperObject() {
    liveInstances.Remove(*this);
}

void CustomHelperObject::FreeCaches() {
    displayMesh.FreeAll();
    meshDirty = 1;
}

ObjectState CustomHelperObject::Eval(TimeValue) {
    return ObjectState{this};
}

void CustomHelperObject::GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) {
    RebuildDisplayMesh();
    box = displayMesh.getBoundingBox();
}

void CustomHelperObject::GetWorldBoundBox(TimeValue t, INode* node, ViewExp* view, Box3& box) {
    GetLocalBoundBox(t, node, view, box);
    if (node) box = box * node->GetObjectTM(t);
}

void CustomHelperObject::RebuildDisplayMesh() {
    WriteDisplayMesh(mesh, displayMesh);
    meshDirty = 0;
    displayMesh.InvalidateGeomCache();
}
