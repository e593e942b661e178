#pragma once

#include <string>

#include "headless/scene_file/scene_document.h"
#include "headless/storage/byte_source.h"

namespace headless {

// Reads a scene file from end to end, checks every checksum, length and field, and gives its plain
// data; `path` is for messages. What the parts of the document say about each other is left to
// CheckDocument. Throws SceneFileError.
SceneDocument ReadDocument(ByteSource& source, const std::string& path);

}  // namespace headless
