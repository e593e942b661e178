#pragma once

#include <span>
#include <string>
#include <vector>

#include "headless/scene_file/file_progress.h"
#include "headless/scene_file/scene_file.h"
#include "headless/session.h"

namespace headless {

// The time in which the scene is replaced, written or added to. It lasts to the announcement that
// the work is done; who calls back before that cannot begin another such work.
class FileWork {
  public:
    explicit FileWork(const std::string& path);
    ~FileWork();
    FileWork(const FileWork&) = delete;
    FileWork& operator=(const FileWork&) = delete;

    // Why such work cannot begin now; empty if it can.
    static std::string Hindrance();

  private:
    ToldFile told_;
};

// Ends a hold that somebody left open, empties the undo buffer, and frees every node. Not while a
// step is undone or redone, whose records still need theirs.
void EmptyScene();

// What a session does with scene files, in the host's order of events.

class SceneFiles {
  public:
    FileOutcome Open(const std::string& path, std::span<const RunningUtility> running);
    FileOutcome Save(const std::string& path, std::span<const RunningUtility> running) const;

    const std::vector<UtilityChunksView>& Chunks() const { return chunks_; }
    void ForgetChunks();  // when the scene is emptied

  private:
    std::string Replace(const std::string& path, std::span<const RunningUtility> running,
                        std::vector<std::string>& complaints);
    void Load(SceneFileReader& file, std::span<const RunningUtility> running,
              std::vector<std::string>& complaints);

    std::vector<KeptChunks> kept_;
    std::vector<UtilityChunksView> chunks_;  // of all utilities in the file that was opened
};

// Merges with an outcome for everything that can happen.
FileOutcome MergeAndSelect(const std::string& path);

// As the host does it for a plug-in: throws SceneFileError if the file is damaged, cannot be merged
// into this scene, or leaves a plug-in without memory; nothing is selected then. False
// if there is no such file, or this is no moment for it. Complaints have nobody to be returned to,
// and stand on standard error.
bool MergeOrThrow(const std::string& path, bool selectMerged);

// Empties the bitmap search path, which plug-ins add to by host/path_config.h. This host shows no
// bitmaps, so nothing is ever looked for there.
void ForgetMapDirectories();

}  // namespace headless
