#include "scene_file/build_objects.h"

#include <exception>

#include "classes/class_registry.h"
#include "host/control.h"
#include "host/object.h"
#include "objects/own_classes.h"
#include "references/graveyard.h"
#include "scene_file/check_document.h"
#include "scene_file/scene_chunks.h"
#include "scene_file/stand_ins.h"
#include "scene_file/stored_bytes.h"
#include "storage/chunk_reader.h"

namespace headless {
namespace {

// What a descriptor has created, by what its super class promises.
ReferenceTarget* AsTarget(void* created, SClass_ID superClass) {
    switch (superClass) {
        case CTRL_MATRIX3_CLASS_ID:
        case CTRL_FLOAT_CLASS_ID:
            return static_cast<Control*>(created);
        case CAMERA_CLASS_ID:
        case SHAPE_CLASS_ID:
        case HELPER_CLASS_ID:
        case GEOMOBJECT_CLASS_ID:
            return static_cast<Object*>(created);
        default:
            return static_cast<ReferenceTarget*>(created);
    }
}

// Whether objects of the super class are targets of references at all. What a file names beyond
// these, such as a utility, is never created.
bool IsTargetClass(SClass_ID superClass) {
    switch (superClass) {
        case CTRL_MATRIX3_CLASS_ID:
        case CTRL_FLOAT_CLASS_ID:
        case CAMERA_CLASS_ID:
        case SHAPE_CLASS_ID:
        case HELPER_CLASS_ID:
        case GEOMOBJECT_CLASS_ID:
        case kCameraParametersSuperClass:
            return true;
        default:
            return false;
    }
}

std::vector<bool> NodeObjects(const SceneDocument& document) {
    std::vector<bool> isNodeObject(document.objects.size());
    for (const StoredNode& node : document.nodes) {
        const StoredReference& object = node.references[kObjectReference];
        if (object.kind == StoredTarget::kObject) isNodeObject[object.index] = true;
    }
    return isNodeObject;
}

}  // namespace

BuiltObjects::BuiltObjects(const SceneDocument& document, ByteSource& source,
                           const std::string& path)
    : document_(document), source_(source), path_(path) {
    const std::vector<bool> isNodeObject = NodeObjects(document);
    objects_.reserve(document.objects.size());
    for (std::size_t i = 0; i < document.objects.size(); ++i)
        objects_.push_back(Make(i, isNodeObject[i]));
}

// What an object lets go of can stand further along, hence nothing is freed before the end.
BuiltObjects::~BuiltObjects() {
    const Graveyard::Pause pause;
    for (ReferenceTarget* object : objects_)
        Graveyard::Get().Release(*object);
}

ReferenceTarget* BuiltObjects::Make(std::size_t index, bool isNodeObject) {
    const StoredObject& stored = document_.objects[index];
    std::string failure;
    ReferenceTarget* const object = MakeLoaded(stored, failure);
    if (object && isNodeObject && !dynamic_cast<Object*>(object)) {
        object->DeleteThis();
        failure = "is no object that a node can have";
    } else if (object) {
        return object;
    }
    if (!failure.empty()) {
        complaints_.push_back(path_ + ": at byte " + std::to_string(stored.position) + ": " +
                              stored.type.name + " " + failure + "; it is kept as it is stored");
    }
    return NewStandIn(stored.type, BytesOf(source_, stored.bytes), stored.references.size(),
                      isNodeObject);
}

// Null if the class is not loaded, or with a `failure` if the object cannot be what is stored.
ReferenceTarget* BuiltObjects::MakeLoaded(const StoredObject& stored, std::string& failure) const {
    const StoredClass& type = stored.type;
    ClassDesc* const descriptor =
        IsTargetClass(type.superClass) ? TheClasses().Find(type.superClass, type.id) : nullptr;
    void* const created = descriptor ? descriptor->Create(true) : nullptr;
    if (!created) return nullptr;
    ReferenceTarget* const object = AsTarget(created, type.superClass);
    ChunkReader reader(source_, stored.bytes.begin, stored.bytes.end);
    try {
        if (object->Load(&reader) != IO_OK) failure = "could not read its bytes";
    } catch (const std::exception& error) {
        failure = std::string("could not read its bytes (") + error.what() + ")";
    }
    if (failure.empty() && stored.references.size() > static_cast<std::size_t>(object->NumRefs()))
        failure = "has fewer references than are stored";
    if (failure.empty()) return object;
    object->DeleteThis();
    return nullptr;
}

// From the far ends of the chains on, so that whoever gets a reference is not yet referred to,
// which is what the search for circles would have to go through.
void BuiltObjects::PointReferences(const std::vector<NodePtr>& nodes) const {
    for (const std::size_t item : TargetsFirst(document_)) {
        const bool isObject = item < objects_.size();
        const std::size_t place = isObject ? item : item - objects_.size();
        ReferenceMaker& maker = isObject ? static_cast<ReferenceMaker&>(*objects_[place])
                                         : static_cast<ReferenceMaker&>(*nodes[place]);
        const auto& references =
            isObject ? document_.objects[place].references : document_.nodes[place].references;
        for (std::size_t i = 0; i < references.size(); ++i)
            maker.ReplaceReference(static_cast<int>(i), TargetOf(references[i], nodes));
    }
}

ReferenceTarget* BuiltObjects::TargetOf(const StoredReference& reference,
                                        const std::vector<NodePtr>& nodes) const {
    if (reference.kind == StoredTarget::kObject) return objects_[reference.index];
    if (reference.kind == StoredTarget::kNode) return nodes[reference.index].get();
    return nullptr;
}

}  // namespace headless
