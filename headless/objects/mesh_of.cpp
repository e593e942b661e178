#include "headless/objects/mesh_of.h"

namespace headless {

// Frees what a conversion has given, unless that is the object itself.
Mesh MeshOf(Object& object, TimeValue t) {
    Mesh mesh;
    Object* const converted = object.ConvertToType(t, kTriObjectClassId);
    if (auto* const triangles = dynamic_cast<TriObject*>(converted)) mesh = triangles->GetMesh();
    if (converted && converted != &object) converted->DeleteThis();
    return mesh;
}

}  // namespace headless
