#include "command/stage_recorder.h"

#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <utility>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/written_files.h"
#include "platform/narrow_path.h"
#include "player/host_settings.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/scene_digest.h"

namespace headless {
namespace {

bool hasStrictFinding = false;

std::unique_ptr<recorder::TapeWriter> OpenTape(const GuestChoice& guests) {
    if (guests.tape.empty()) return nullptr;
    KeepFromBooked({"--tape", guests.tape});
    std::string whyNot;
    auto tape = recorder::TapeWriter::Open({guests.tape, guests.tapeLimit}, whyNot);
    if (!tape) throw Failure(whyNot);
    return tape;
}

}  // namespace

StageRecorder::StageRecorder(const GuestChoice& guests) : guests_(guests), tape_(OpenTape(guests)) {
    if (guests.watch != WatchChoice::kNo) watch_.emplace();
    if (tape_) stream_.Add(*tape_);
    if (watch_) stream_.Add(*watch_);
}

// What there is no memory for stays untold.
StageRecorder::~StageRecorder() {
    try {
        const std::vector<recorder::Finding> findings = Findings();
        if (guests_.watch == WatchChoice::kStrict) hasStrictFinding |= !findings.empty();
        for (const recorder::Finding& finding : findings)
            std::cerr << kWatchFound << InTable(Line(finding)) << '\n';
        PrintEach(std::cerr, kComplaint, TakeTroubles());
    } catch (...) {
    }
}

void StageRecorder::NameCore(const std::string& library) {
    recorder_ = std::make_unique<recorder::Recorder>(stream_, library);
    if (!tape_) return;
    tape_->onNewSegment = [this](const recorder::TapeWriter::TellObject& tell) {
        recorder_->TellObjects(tell);
    };
}

CoreInterface* StageRecorder::Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) {
    hasBegun_ = true;
    return recorder_->Attach(adaptor, [&](TVL::AdaptorInterface* proxy) {
        Note(recorder::note::kSettings, player::SettingsNote());
        return guests_.inPlace ? guests_.inPlace->Attach(proxy, nullptr) : attach(proxy);
    });
}

void StageRecorder::Detach(CoreInterface* core, const DetachCore& detach) {
    if (!guests_.inPlace) return recorder_->Detach(core, detach);
    recorder_->Detach(core, [this](CoreInterface* own) { guests_.inPlace->Detach(own, nullptr); });
}

void StageRecorder::Note(std::string_view word, std::string_view about) noexcept {
    if (hasBegun_) stream_.Note(word, about);
}

void StageRecorder::NoteScene(std::string_view word, const std::string& scene) {
    const std::string digest = recorder::DigestOfFile(scene) + ' ';
    if (guests_.withScenes && word != recorder::note::kSaved) {
        std::ifstream file(platform::FromNarrow(scene), std::ios::binary);
        if (const auto bytes = RestOf(file)) Note(recorder::note::kScene, digest + *bytes);
    }
    Note(word, digest + scene);
}

std::vector<std::string> StageRecorder::TakeTroubles() {
    std::vector<std::string> troubles;
    std::string stop = tape_ ? tape_->WhyStopped() : "";
    if (stop != std::exchange(toldStop_, stop)) troubles.push_back(std::move(stop));
    const std::uint64_t lost = stream_.Lost();
    if (const std::uint64_t more = lost - std::exchange(toldLost_, lost); more > 0)
        troubles.push_back(Counted(more, "call") + " could not be written down for want of memory");
    if (watch_ && !std::exchange(isBlindTold_, !watch_->HasSeenAll()) && isBlindTold_)
        troubles.push_back("the watch has missed a call, and says nothing of what came behind it");
    return troubles;
}

std::vector<recorder::Finding> StageRecorder::Findings() const {
    return watch_ ? watch_->Findings() : std::vector<recorder::Finding>();
}

bool HasStrictFinding() {
    return hasStrictFinding;
}

nlohmann::ordered_json JsonOf(const recorder::Finding& finding) {
    return {{"rule", finding.rule},
            {"operation", recorder::RowOf(finding.operation).name},
            {"node", finding.node},
            {"about", finding.about},
            {"count", finding.count},
            {"firstCall", finding.firstCall},
            {"firstSeconds", finding.firstMilliseconds / 1000.0}};
}

}  // namespace headless
