#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "headless/scene/node.h"
#include "headless/scene_file/scene_document.h"
#include "headless/scene_file/scene_file.h"
#include "host/reference.h"

namespace headless {

// Everything that a checked file holds, made anew outside the scene. Objects that nobody has taken
// a reference to when this ends are freed with it.
class BuiltObjects {
  public:
    // Nothing refers to anything yet.
    explicit BuiltObjects(SceneFileReader& file);
    ~BuiltObjects();
    BuiltObjects(const BuiltObjects&) = delete;
    BuiltObjects& operator=(const BuiltObjects&) = delete;

    // Points all references, those of the nodes too: `nodes` are those of the file.
    void PointReferences(const std::vector<NodePtr>& nodes);

    // A line for each object that could not read its bytes, or not all of them, or would not refer
    // to what it referred to, with what became of it, and one for each class that is not loaded.
    const std::vector<std::string>& Complaints() const { return complaints_; }

  private:
    struct Unbuilt {
        SceneFileReader& file;
    };
    explicit BuiltObjects(Unbuilt unbuilt);

    ReferenceTarget* Make(std::size_t index);
    ReferenceTarget* MakeLoaded(std::size_t index, std::string& failure);
    ReferenceTarget* KeepStored(std::size_t index);
    void Complain(std::size_t index, const std::string& what);
    void ComplainOfMissingClasses();
    void PointObject(std::size_t index, const std::vector<NodePtr>& nodes);
    bool Point(ReferenceMaker& maker, const std::vector<StoredReference>& references,
               const std::vector<NodePtr>& nodes) const;
    ReferenceTarget* TargetOf(const StoredReference& reference,
                              const std::vector<NodePtr>& nodes) const;

    SceneFileReader& file_;
    const SceneDocument& document_;
    std::vector<const StoredNode*> shownBy_;     // the first node that shows the object, or null
    std::vector<const StoredNode*> movedBy_;     // the first that it moves
    std::vector<ReferenceTarget*> objects_;      // by index, like these
    std::map<std::string, std::size_t> unmade_;  // by class: objects of none that is loaded
    std::vector<ReferenceTarget*> refused_;      // kept as stored in the place of each
    std::vector<std::string> complaints_;
};

// An object in the place of one whose class is not loaded, or which could not read its own bytes.
// It says its class, keeps bytes and references as the file has them, writes them back, can be
// copied, and does nothing else: a transform controller leaves its node where the parent is, an
// object shows nothing. Its base is that of its super class, so that whoever goes by that gets what
// is promised. `isNodeObject`: a node has it as its object.
ReferenceTarget* NewKeptObject(const StoredClass& type, std::vector<std::byte> bytes,
                               std::size_t references, bool isNodeObject);

}  // namespace headless
