#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "headless/scene_file/scene_document.h"
#include "host/reference.h"

// Objects in the place of those whose class is not loaded, or which could not read their own bytes.
// They say their class, keep bytes and references as the file has them, write them back, can be
// copied, and do nothing else: a transform controller leaves its node where the parent is, an
// object shows nothing.
namespace headless {

// The base of what stands in for an object of some super class, so that whoever goes by that gets
// what is promised. `isNodeObject`: a node has it as its object.
ReferenceTarget* NewStandIn(const StoredClass& type, std::vector<std::byte> bytes,
                            std::size_t references, bool isNodeObject);

}  // namespace headless
