#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "headless/scene/node.h"
#include "headless/scene_file/file_errors.h"
#include "headless/scene_file/scene_document.h"
#include "headless/storage/byte_source.h"
#include "host/class_desc.h"
#include "host/gup.h"

// Scene files on disk: checked before they are believed, streamed both ways, complete or untouched.
namespace headless {

// A global utility that runs, with the descriptor of its class.
struct RunningUtility {
    ClassDesc* descriptor = nullptr;
    GUP* utility = nullptr;
};

inline ClassKey ClassOf(const RunningUtility& running) {
    return KeyOf(running.descriptor->SuperClassID(), running.descriptor->ClassID());
}

// Chunks that a utility has not taken from the scene that was opened, so that none is lost for want
// of somebody who can read it.
struct KeptChunks {
    StoredClass type;
    std::vector<std::byte> chunks;    // all of them, if it failed
    bool hasFailed = false;           // inside one of them, and the others are taken or not read
    std::vector<std::byte> unread{};  // if it failed so: those that it has not read whole
};

// What a save writes of a utility: `own`, which it has written itself, and what is kept beside it,
// but for chunks that stand in `own` to the byte. Kept chunks are the older and stand ahead, so
// that whoever takes both has the newer one last; those at which its reading failed stand behind,
// where they keep it from nothing. Where `own` is empty, everything is written that is kept.
std::vector<std::byte> WithKept(const KeptChunks& kept, std::vector<std::byte> own);

// A scene file that has been checked from end to end: every checksum, length, index and handle.
class SceneFileReader {
  public:
    // Throws SceneFileError, also if the file cannot be read.
    explicit SceneFileReader(const std::string& path);

    const SceneDocument& Document() const { return document_; }
    const std::string& Path() const { return path_; }
    ByteSource& Source() { return *source_; }

    // What stands at a range of the document. Throws SceneFileError if the disk fails: with the
    // next save half of the bytes would take the place of the whole.
    std::vector<std::byte> BytesOf(const StoredRange& range);

    // Makes everything that the file holds. The scene is empty and nothing is held; none of it is
    // undoable. Units, frame rate, range, time, handles, parents, properties and selection are the
    // file's. The result is a line for each object that could not read its own bytes: that one is
    // kept as it was stored.
    std::vector<std::string> OpenIntoScene();

    // Adds the file's nodes behind those of the scene, under new handles, with everything that they
    // refer to; the scene's settings and selection stay. The nodes come in the order of the file.
    // Throws SceneFileError, and changes nothing, if the file's unit or tick is another one.
    std::vector<SceneNode*> MergeIntoScene(std::vector<std::string>& complaints);

    // Runs `Load` of each running utility that has chunks in the file, in the file's order. What
    // comes back is what no utility has opened a chunk of, has skipped, could not read whole, or
    // failed to load; each failure, and the first chunk that does not fit what was read of it, is a
    // complaint.
    std::vector<KeptChunks> LoadUtilities(std::span<const RunningUtility> running,
                                          std::vector<std::string>& complaints);

  private:
    std::vector<std::byte> BytesOf(const std::vector<StoredRange>& ranges);
    KeptChunks LoadUtility(const StoredUtility& stored, GUP& utility,
                           std::vector<std::string>& complaints);

    std::string path_;
    std::unique_ptr<ByteSource> source_;
    SceneDocument document_;
};

// One to look at, whose progress is told where no other file's is.
SceneFileReader ReadTold(const std::string& path);

// Writes the scene, and the chunks of the utilities: for each that runs what its `Save` writes, and
// what is kept of each beside it. The file goes beside its place first, and takes
// it when it is whole and on the disk. Throws SceneFileError; the old file stands untouched then.
void WriteSceneFile(const std::string& path, std::span<const RunningUtility> running,
                    std::span<const KeptChunks> kept);

}  // namespace headless
