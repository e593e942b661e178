#pragma once

#include <string>
#include <vector>

#include "host/reference.h"
#include "scene/node.h"
#include "scene_file/scene_document.h"
#include "storage/byte_source.h"

namespace headless {

// Everything that a checked document holds, made anew outside the scene. Objects that nobody has
// taken a reference to when this ends are freed with it.
class BuiltObjects {
  public:
    // `path` is for messages. Nothing refers to anything yet.
    BuiltObjects(const SceneDocument& document, ByteSource& source, const std::string& path);
    ~BuiltObjects();
    BuiltObjects(const BuiltObjects&) = delete;
    BuiltObjects& operator=(const BuiltObjects&) = delete;

    // Points all references, those of the nodes too: `nodes` are those of the document.
    void PointReferences(const std::vector<NodePtr>& nodes) const;

    // A line for each object that is there as it was stored because it could not read its bytes.
    const std::vector<std::string>& Complaints() const { return complaints_; }

  private:
    ReferenceTarget* Make(std::size_t index, bool isNodeObject);
    ReferenceTarget* MakeLoaded(const StoredObject& stored, std::string& failure) const;
    ReferenceTarget* TargetOf(const StoredReference& reference,
                              const std::vector<NodePtr>& nodes) const;

    const SceneDocument& document_;
    ByteSource& source_;
    const std::string& path_;
    std::vector<ReferenceTarget*> objects_;
    std::vector<std::string> complaints_;
};

}  // namespace headless
