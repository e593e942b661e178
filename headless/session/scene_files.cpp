#include "headless/session/scene_files.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "headless/hold/undo_stream.h"
#include "headless/scene/listeners.h"
#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
#include "headless/scene_file/file_errors.h"
#include "headless/scene_view.h"
#include "host/hold.h"
#include "host/notify.h"
#include "host/path_config.h"
#include "platform/narrow_path.h"

IPathConfigMgr::~IPathConfigMgr() = default;

namespace headless {
namespace {

std::vector<std::string> directories;

class SearchPath final : public IPathConfigMgr {
  public:
    bool AddSessionMapDir(const HostString& directory, bool) override {
        const bool isKnown = std::ranges::find(directories, directory) != directories.end();
        if (directory.empty() || isKnown) return false;
        directories.push_back(directory);
        return true;
    }
};

bool isUnderWay = false;

constexpr const char* kNotOpened = "it could not be opened";
constexpr const char* kNotSaved = "it could not be saved";
constexpr const char* kNotMerged = "it could not be merged";

constexpr int kReplacingFile = 0;  // the kind of file that takes the place of the scene

std::string At(const std::string& path, const std::string& reason) {
    return path + ": " + reason;
}

std::string Hindrance(const std::string& path) {
    const std::string reason = FileWork::Hindrance();
    return reason.empty() ? reason : At(path, reason);
}

// What kept the work from being done, in one line; empty if it was done. The host's own errors name
// the file; what plug-ins throw does not.
template <class Work>
std::string Attempt(const std::string& path, const char* during, Work work) {
    try {
        work();
    } catch (const SceneFileError& error) {
        return error.what();
    } catch (...) {
        return At(path, during + (": " + ThrownWords()));
    }
    return {};
}

std::string FailedAt(int code) {
    return "a plug-in failed at notification " + std::to_string(code);
}

std::string Announce(const std::string& path, int code, void* parameter = nullptr) {
    return Attempt(path, FailedAt(code).c_str(), [&] { Broadcast(code, parameter); });
}

void AddTo(std::vector<std::string>& complaints, std::string line) {
    if (!line.empty()) complaints.push_back(std::move(line));
}

UtilityChunksView ViewOf(const StoredUtility& stored, std::span<const RunningUtility> running,
                         std::span<const KeptChunks> kept) {
    const StoredClass& type = stored.type;
    const bool isRunning = std::ranges::any_of(
        running, [&](const RunningUtility& one) { return ClassOf(one) == type.Key(); });
    const bool isKept = std::ranges::any_of(
        kept, [&](const KeptChunks& one) { return one.type.Key() == type.Key(); });
    return {type.name, type.id, stored.chunks.Size(), isRunning, !isKept};
}

}  // namespace

FileWork::FileWork(const std::string& path) : told_(path) {
    isUnderWay = true;
}

FileWork::~FileWork() {
    isUnderWay = false;
}

std::string FileWork::Hindrance() {
    if (isUnderWay) return "another scene file is being opened, saved or merged";
    if (theHold.RestoreOrRedoing()) return "a step is being undone or redone";
    return {};
}

// A forgotten hold would keep the undo stream from being emptied.
void EmptyScene() {
    if (theHold.Holding()) theHold.Accept("");
    UndoStream::Get().Flush();
    TheScene().Clear();
}

FileOutcome SceneFiles::Open(const std::string& path, std::span<const RunningUtility> running) {
    FileOutcome outcome;
    outcome.error = Hindrance(path);
    if (outcome.error.empty()) outcome.error = Replace(path, running, outcome.complaints);
    if (outcome.error.empty()) AddTo(outcome.complaints, Announce(path, NOTIFY_FILE_POST_OPEN));
    return outcome;
}

// The file has been checked before anybody hears of it. One that fails later, because the disk
// does, leaves an empty scene rather than half of one. To give it up then is for a scene that had
// nothing to lose.
std::string SceneFiles::Replace(const std::string& path, std::span<const RunningUtility> running,
                                std::vector<std::string>& complaints) {
    const FileWork work(path);
    std::optional<SceneFileReader> file;
    std::string error = Attempt(path, kNotOpened, [&] { file.emplace(path); });
    if (!error.empty()) return error;
    int kind = kReplacingFile;
    error = Announce(path, NOTIFY_FILE_PRE_OPEN, &kind);
    if (!error.empty()) return error;
    if (!TheScene().InOrder().empty()) ToldFile::GoOnToTheEnd();
    EmptyScene();
    ForgetChunks();
    error = Attempt(path, kNotOpened, [&] { Load(*file, running, complaints); });
    if (!error.empty()) EmptyScene();
    return error;
}

void SceneFiles::Load(SceneFileReader& file, std::span<const RunningUtility> running,
                      std::vector<std::string>& complaints) {
    complaints = file.OpenIntoScene();
    kept_ = file.LoadUtilities(running, complaints);
    for (const StoredUtility& stored : file.Document().utilities)
        chunks_.push_back(ViewOf(stored, running, kept_));
}

FileOutcome SceneFiles::Save(const std::string& path,
                             std::span<const RunningUtility> running) const {
    FileOutcome outcome;
    outcome.error = Hindrance(path);
    if (!outcome.error.empty()) return outcome;
    const FileWork work(path);
    outcome.error = Announce(path, NOTIFY_FILE_PRE_SAVE);
    if (outcome.error.empty()) {
        outcome.error = Attempt(path, kNotSaved, [&] { WriteSceneFile(path, running, kept_); });
    }
    AddTo(outcome.complaints, Announce(path, NOTIFY_FILE_POST_SAVE));
    return outcome;
}

void SceneFiles::ForgetChunks() {
    kept_.clear();
    chunks_.clear();
}

namespace {

// Everybody is still to hear of it. A plug-in that fails then takes nothing of the merge back.
FileOutcome Merge(const std::string& path, bool selectMerged) {
    FileOutcome outcome;
    outcome.error = Hindrance(path);
    if (!outcome.error.empty()) return outcome;
    std::error_code unknown;
    if (!std::filesystem::exists(platform::FromNarrow(path), unknown))
        return {At(path, "there is no such file"), {}};
    const FileWork work(path);
    SceneFileReader file(path);
    const std::vector<SceneNode*> merged = file.MergeIntoScene(outcome.complaints);
    if (selectMerged) SelectNodes(merged, true);
    return outcome;
}

}  // namespace

FileOutcome MergeAndSelect(const std::string& path) {
    FileOutcome outcome;
    const std::string error = Attempt(path, kNotMerged, [&] { outcome = Merge(path, true); });
    if (!error.empty()) outcome.error = error;
    if (outcome.error.empty()) AddTo(outcome.complaints, Announce(path, NOTIFY_FILE_POST_MERGE));
    return outcome;
}

// Whoever asked takes what is selected for what was merged, and a plug-in that had no memory to
// take it in has lost it.
bool MergeOrThrow(const std::string& path, bool selectMerged) try {
    FileOutcome outcome = Merge(path, selectMerged);
    if (outcome.error.empty()) {
        try {
            Broadcast(NOTIFY_FILE_POST_MERGE);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            const std::string failed = FailedAt(NOTIFY_FILE_POST_MERGE);
            outcome.complaints.push_back(At(path, failed + ": " + ThrownWords()));
        }
    }
    for (const std::string& complaint : outcome.complaints)
        std::cerr << complaint << '\n';
    return outcome.error.empty();
} catch (...) {
    ClearSelection();
    throw;
}

std::vector<std::string> MapDirectories() {
    return directories;
}

void ForgetMapDirectories() {
    directories.clear();
}

}  // namespace headless

IPathConfigMgr* IPathConfigMgr::GetPathConfigMgr() {
    static headless::SearchPath searchPath;
    return &searchPath;
}
