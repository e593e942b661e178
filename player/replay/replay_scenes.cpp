#include "player/replay/replay_scenes.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/narrow_path.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/scene_digest.h"

namespace player {
namespace {

namespace fs = std::filesystem;

bool IsFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(platform::FromNarrow(path), error);
}

// The name that a path of either system ends with.
std::string NameOf(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace

ReplayScenes::ReplayScenes(const recorder::TapeContents& tape, std::string folder)
    : tape_(tape), folder_(std::move(folder)) {}

// Written once more under another name, since the older file may be one that is read again.
std::string ReplayScenes::ToWrite(const std::string& path) {
    const std::string name = std::to_string(written_.size() + saved_.size()) + ".scene";
    return written_[path] = platform::ToNarrow(platform::FromNarrow(folder_) / name);
}

void ReplayScenes::NoteSaved(const std::string& digest, const std::string& path) {
    const auto written = written_.find(path);
    if (written != written_.end()) saved_[digest] = written->second;
}

std::string ReplayScenes::ToRead(const std::string& digest, const std::string& path) {
    if (digest.empty()) {
        const auto written = written_.find(path);
        if (written != written_.end()) return written->second;
        return IsFile(path) ? path : BesideTape(digest, path);
    }
    const auto saved = saved_.find(digest);
    if (saved != saved_.end()) return saved->second;
    if (IsFile(path) && recorder::DigestOfFile(path) == digest) return path;
    const std::string beside = BesideTape(digest, path);
    return beside.empty() ? FromTape(digest) : beside;
}

std::string ReplayScenes::BesideTape(const std::string& digest, const std::string& path) const {
    std::error_code error;
    const fs::path folder = fs::absolute(platform::FromNarrow(tape_.path), error).parent_path();
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string file = platform::ToNarrow(entry->path());
        if (file.empty() || !IsFile(file)) continue;
        const bool isIt =
            digest.empty() ? NameOf(file) == NameOf(path) : recorder::DigestOfFile(file) == digest;
        if (isIt) return file;
    }
    return {};
}

std::string ReplayScenes::FromTape(const std::string& digest) {
    for (const recorder::TapeSession& session : tape_.sessions)
        for (const recorder::Record& record : session.records) {
            const auto [word, about] = recorder::NoteOf(record);
            if (word != recorder::note::kScene) continue;
            const recorder::SceneTexts scene = recorder::SceneOf(about);
            if (scene.digest != digest) continue;
            const std::string path = ToWrite(digest);
            std::ofstream(platform::FromNarrow(path), std::ios::binary) << scene.rest;
            if (recorder::DigestOfFile(path) == digest) return saved_[digest] = path;
        }
    return {};
}

}  // namespace player
