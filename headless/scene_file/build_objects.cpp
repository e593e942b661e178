#include "headless/scene_file/build_objects.h"

#include <new>

#include "headless/classes/class_registry.h"
#include "headless/hold/graveyard.h"
#include "headless/objects/own_classes.h"
#include "headless/scene_file/file_errors.h"
#include "headless/scene_file/file_progress.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_document.h"
#include "headless/storage/chunks.h"
#include "host/control.h"
#include "host/object.h"

namespace headless {
namespace {

// What a descriptor creates, by what its super class promises. What a file names beyond targets of
// references, such as a utility, is never created.
ReferenceTarget* Created(ClassDesc& descriptor) {
    switch (descriptor.SuperClassID()) {
        case CTRL_MATRIX3_CLASS_ID:
        case CTRL_FLOAT_CLASS_ID:
            return static_cast<Control*>(descriptor.Create(true));
        case CAMERA_CLASS_ID:
        case SHAPE_CLASS_ID:
        case HELPER_CLASS_ID:
        case GEOMOBJECT_CLASS_ID:
            return static_cast<Object*>(descriptor.Create(true));
        case kCameraParametersSuperClass:
            return static_cast<ReferenceTarget*>(descriptor.Create(true));
        default:
            return nullptr;
    }
}

// By the object's index, the first node that has it in that place; null if none has.
std::vector<const StoredNode*> NodesWith(const SceneDocument& document, std::size_t place) {
    std::vector<const StoredNode*> nodes(document.objects.size());
    for (const StoredNode& node : document.nodes) {
        const StoredReference& object = node.references[place];
        if (object.kind != StoredTarget::kObject || nodes[object.index]) continue;
        nodes[object.index] = &node;
    }
    return nodes;
}

constexpr char kKeptAsStored[] = "; it is kept as it is stored";
constexpr char kCutAtNextSave[] = "; the next save keeps what it could read";
constexpr char kTorn[] = "could not read all of its bytes as they are";

// What a node shows is whole or is kept as it is stored, whatever it says itself. A controller goes
// on with what is whole of its keys, since one kept as stored would neither move the node nor be
// recorded.
bool MustBeWhole(const ReferenceTarget& object) {
    return dynamic_cast<const BaseObject*>(&object) != nullptr;
}

}  // namespace

BuiltObjects::BuiltObjects(Unbuilt unbuilt)
    : file_(unbuilt.file),
      document_(unbuilt.file.Document()),
      shownBy_(NodesWith(document_, kObjectReference)),
      movedBy_(NodesWith(document_, kTransformReference)) {}

// By way of the other constructor, so that what is made ends well also if the making does not.
BuiltObjects::BuiltObjects(SceneFileReader& file) : BuiltObjects(Unbuilt{file}) {
    objects_.reserve(document_.objects.size());
    for (std::size_t i = 0; i < document_.objects.size(); ++i) {
        objects_.push_back(Make(i));
        TellDone("Reading", document_.objects[i].bytes.end, document_.objects.back().bytes.end);
    }
    ComplainOfMissingClasses();
}

// What an object lets go of can stand further along, hence nothing is freed before the end.
BuiltObjects::~BuiltObjects() {
    const Graveyard::Pause pause;
    for (const auto* objects : {&objects_, &refused_}) {
        for (ReferenceTarget* object : *objects)
            Graveyard::Get().Release(*object);
    }
}

ReferenceTarget* BuiltObjects::Make(std::size_t index) {
    const StoredObject& stored = document_.objects[index];
    std::string failure;
    ReferenceTarget* const object = MakeLoaded(index, failure);
    if (object && shownBy_[index] && !dynamic_cast<Object*>(object)) {
        object->DeleteThis();
        failure = "is no object that a node can have";
    } else if (object) {
        return object;
    }
    if (failure.empty())
        ++unmade_[stored.type.name];
    else
        Complain(index, failure + kKeptAsStored);
    return KeepStored(index);
}

// Null if the class is not loaded, or with a `failure` if the object cannot be what is stored.
ReferenceTarget* BuiltObjects::MakeLoaded(std::size_t index, std::string& failure) {
    const StoredObject& stored = document_.objects[index];
    ClassDesc* const descriptor = TheClasses().Find(stored.type.superClass, stored.type.id);
    ReferenceTarget* const object = descriptor ? Created(*descriptor) : nullptr;
    if (!object) return nullptr;
    ChunkReader reader(file_.Source(), stored.bytes.begin, stored.bytes.end);
    try {
        if (object->Load(&reader) != IO_OK)
            failure = "could not read its bytes";
        else if (reader.HasMisfit() && MustBeWhole(*object))
            failure = kTorn;
    } catch (const std::bad_alloc&) {
        object->DeleteThis();  // what it lacks says nothing of the file, whose work ends here
        throw;
    } catch (...) {
        failure = "could not read its bytes (" + ThrownWords() + ")";
    }
    if (failure.empty() && stored.references.size() > static_cast<std::size_t>(object->NumRefs()))
        failure = "has fewer references than are stored";
    if (failure.empty()) {
        if (reader.HasMisfit()) Complain(index, kTorn + std::string(kCutAtNextSave));
        return object;
    }
    object->DeleteThis();
    return nullptr;
}

ReferenceTarget* BuiltObjects::KeepStored(std::size_t index) {
    const StoredObject& stored = document_.objects[index];
    return NewKeptObject(stored.type, file_.BytesOf(stored.bytes), stored.references.size(),
                         shownBy_[index] != nullptr);
}

void BuiltObjects::Complain(std::size_t index, const std::string& what) {
    const StoredObject& stored = document_.objects[index];
    const StoredNode* const node = shownBy_[index] ? shownBy_[index] : movedBy_[index];
    complaints_.push_back(file_.Path() + ": at byte " + std::to_string(stored.position) + ": " +
                          stored.type.name + (node ? " of the node " + Quoted(node->name) : "") +
                          " " + what);
}

void BuiltObjects::ComplainOfMissingClasses() {
    for (const auto& [name, count] : unmade_)
        complaints_.push_back(file_.Path() + ": the class " + Quoted(name) + " of " +
                              std::to_string(count) + (count == 1 ? " object" : " objects") +
                              " is not loaded; kept as stored");
}

// From the far ends of the chains on, so that whoever gets a reference is not yet referred to,
// which is what the search for circles would have to go through.
void BuiltObjects::PointReferences(const std::vector<NodePtr>& nodes) {
    for (const std::size_t item : TargetsFirst(document_)) {
        if (item < objects_.size()) {
            PointObject(item, nodes);
        } else {
            const std::size_t node = item - objects_.size();
            Point(*nodes[node], document_.nodes[node].references, nodes);
        }
    }
}

// What an object does not refer to would be lost, such as a part that stands in for what it was.
// Nobody refers to the object itself yet, so that another can still take its place.
void BuiltObjects::PointObject(std::size_t index, const std::vector<NodePtr>& nodes) {
    const StoredObject& stored = document_.objects[index];
    if (Point(*objects_[index], stored.references, nodes)) return;
    Complain(index, std::string("does not take what it refers to") + kKeptAsStored);
    refused_.push_back(objects_[index]);
    objects_[index] = KeepStored(index);
    Point(*objects_[index], stored.references, nodes);
}

// False: not all of them point to what they are stored to.
bool BuiltObjects::Point(ReferenceMaker& maker, const std::vector<StoredReference>& references,
                         const std::vector<NodePtr>& nodes) const {
    bool isTaken = true;
    for (std::size_t i = 0; i < references.size(); ++i) {
        const int index = static_cast<int>(i);
        ReferenceTarget* const target = TargetOf(references[i], nodes);
        maker.ReplaceReference(index, target);
        isTaken &= !target || maker.GetReference(index) == target;
    }
    return isTaken;
}

ReferenceTarget* BuiltObjects::TargetOf(const StoredReference& reference,
                                        const std::vector<NodePtr>& nodes) const {
    if (reference.kind == StoredTarget::kObject) return objects_[reference.index];
    if (reference.kind == StoredTarget::kNode) return nodes[reference.index].get();
    return nullptr;
}

}  // namespace headless
