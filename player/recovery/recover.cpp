#include "player/recovery/recover.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "headless/scene_file_view.h"
#include "platform/child_process.h"
#include "platform/narrow_path.h"
#include "player/host_settings.h"
#include "player/recovery/making_again.h"
#include "recorder/tape/mapped_file.h"
#include "recorder/tape/scene_digest.h"
#include "tvl/error_code.h"

namespace player {
namespace {

// Of the plug-in's chunks in a scene file.
constexpr std::uint16_t kStateChunk = 1032;
constexpr std::uint16_t kOlderStateChunk = 1024;

std::size_t CountOfChunks(const headless::SceneFileView& scene, std::uint16_t id) {
    std::size_t count = 0;
    for (const headless::UtilityInFile& utility : scene.utilities)
        count += static_cast<std::size_t>(
            std::ranges::count(utility.chunks, id, &headless::ChunkInFile::id));
    return count;
}

RecoveredWork ReportOn(const WorkGroup& group, const FoundNodes& nodes) {
    RecoveredWork work{group, {}};
    for (const ObjectId node : group.nodes)
        work.nodes.push_back(nodes.NameOf(node));
    std::ranges::sort(work.nodes);
    work.nodes.erase(std::unique(work.nodes.begin(), work.nodes.end()), work.nodes.end());
    return work;
}

std::string StepLabel(const MissingWork& work, OpenGroups openGroups) {
    std::vector<const WorkGroup*> named;
    for (const WorkGroup& group : work.groups)
        if (group.isGroup && group.changes > 0 && ComesBack(group, openGroups))
            named.push_back(&group);
    if (named.empty()) return "Recovered work";
    std::string label = "Recovered \"" + named.front()->name + '"';
    if (named.size() > 1) label += " and " + std::to_string(named.size() - 1) + " more";
    return label;
}

// What no state names would be marked for a Core that never asks for it, and lose its mark with a
// message when the scene is opened.
std::vector<std::string> TurnIntoPlainNodes(RecoveryCore& core) {
    for (RecoveryCore::MarkedNode& marked : core.Marked())
        if (!core.HasPartsOf(marked.owner)) core.TakeBackName(marked);
    std::vector<std::string> names;
    LiveObjects& objects = core.Objects();
    for (const ObjectId owner : core.Owners())
        for (TVL::CNode* const each :
             objects.Adaptor().GetNodes(objects.Find<TVL::CoreElement>(owner))) {
            auto* const node = static_cast<TVL::CoreNode*>(each);
            const bool isMarked = std::ranges::any_of(
                core.Marked(), [&](const auto& marked) { return marked.node == node; });
            if (isMarked || core.Mentions(owner, node->GetNodeName())) continue;
            names.push_back(node->GetName());
            node->Unclaim();
            node->Destroy();
        }
    return names;
}

std::optional<UnsavedWork> FindUnsavedWork(const recorder::TapeContents& tape, std::size_t index) {
    const recorder::TapeSession& session = tape.sessions[index];
    if (session.isClosed) return std::nullopt;
    const std::vector<Checkpoint> checkpoints = CheckpointsOf(session);
    const MissingWork work =
        FindMissingWork(session, checkpoints, checkpoints.back(), OpenGroups::kTaken);
    if (!work.HasWork()) return std::nullopt;
    return UnsavedWork{index + 1, checkpoints.back(), work.HasOpenGroup()};
}

std::string FileAsTyped(const std::string& path) {
    return platform::AsTyped(platform::WordOfFile(path));
}

}  // namespace

// Whoever goes on with the tape adds another session to it.
std::string CommandFor(const std::string& tape, const UnsavedWork& work, const std::string& scene) {
    const Checkpoint& base = work.base;
    const std::string target = scene == "NEW.scene" ? "NEWER.scene" : "NEW.scene";
    std::string words = "lumiset-headless recover " + FileAsTyped(tape) + " -o " + target;
    if (!scene.empty())
        words += " --into " + FileAsTyped(scene) + " --after " + std::to_string(base.call);
    else if (!base.IsEmpty())
        words += " --into " + (base.path.empty() ? "SCENE" : FileAsTyped(base.path));
    if (work.hasOpenGroup) words += " --open-group";
    return words + " --session " + std::to_string(work.session);
}

Recovery::Recovery(const recorder::TapeContents& tape, RecoveryChoice choice)
    : tape_(tape), choice_(std::move(choice)) {
    for (const recorder::TapeSession& session : tape_.sessions)
        checkpoints_.push_back(CheckpointsOf(session));
    if (!choice_.scene.empty()) {
        digest_ = recorder::DigestOfFile(choice_.scene);
        const headless::SceneFileView scene = headless::ViewSceneFile(choice_.scene);
        core_.ExpectState(CountOfChunks(scene, kStateChunk),
                          CountOfChunks(scene, kOlderStateChunk));
    }
    base_ = choice_.after ? FindNamed() : FindByDigestOrBeginning();
}

headless::SessionSettings Recovery::Settings() const {
    if (!base_) return {};
    return SettingsOf(tape_.sessions[base_->session]);
}

// Of the tape, the newest first, or the one that was asked for.
std::vector<std::size_t> Recovery::Sessions() const {
    if (choice_.session) return {*choice_.session - 1};
    std::vector<std::size_t> sessions(tape_.sessions.size());
    std::iota(sessions.rbegin(), sessions.rend(), std::size_t{0});
    return sessions;
}

std::optional<Recovery::Candidate> Recovery::FindNamed() const {
    const std::size_t session = Sessions().front();
    for (const Checkpoint& checkpoint : checkpoints_[session])
        if (checkpoint.call == *choice_.after) return Candidate{session, checkpoint};
    const Checkpoint named = CheckpointAfter(tape_.sessions[session], *choice_.after);
    if (named.call < *choice_.after)
        throw std::runtime_error(
            tape_.path + ": there is no call " + std::to_string(*choice_.after) + " in session " +
            std::to_string(session + 1) + ", whose last one is " + std::to_string(named.call));
    return Candidate{session, named};
}

std::optional<Recovery::Candidate> Recovery::FindByDigestOrBeginning() const {
    for (const std::size_t session : Sessions()) {
        if (const Checkpoint* found = FindByDigest(checkpoints_[session], digest_))
            return Candidate{session, *found};
        if (!choice_.scene.empty()) continue;
        const std::vector<Checkpoint>& list = checkpoints_[session];
        const auto empty = std::find_if(list.rbegin(), list.rend(),
                                        [](const Checkpoint& each) { return each.BeginsScene(); });
        if (empty->IsEmpty()) return Candidate{session, *empty};
    }
    return std::nullopt;
}

// Where a host tells of its scenes by digest, one that it did not tell of is none of them.
std::optional<Recovery::Candidate> Recovery::FindByStoredState() const {
    for (const std::size_t session : Sessions()) {
        if (HasNotes(tape_.sessions[session])) continue;
        if (const Checkpoint* found = FindByState(checkpoints_[session], core_.Stored()))
            return Candidate{session, *found};
    }
    return std::nullopt;
}

void Recovery::RefuseToGuess() const {
    std::string text = tape_.path + ": it cannot be told up to where ";
    text += choice_.scene.empty() ? "an empty scene" : choice_.scene;
    text += " has what this tape holds; name one of its moments";
    for (const std::size_t session : Sessions())
        for (const Checkpoint& checkpoint : checkpoints_[session])
            text += "; --session " + std::to_string(session + 1) + ' ' + LineOf(checkpoint);
    throw std::runtime_error(text);
}

// The nodes that were found are given back before the Core has its last state.
RecoveryReport Recovery::Perform(headless::Session& session,
                                 const recorder::TapeProgress& progress) {
    if (!base_ && !choice_.scene.empty()) base_ = FindByStoredState();
    if (!base_) RefuseToGuess();
    const recorder::TapeSession& tape = tape_.sessions[base_->session];
    const MissingWork work =
        FindMissingWork(tape, checkpoints_[base_->session], base_->base, choice_.openGroups);
    RecoveryReport report;
    report.session = base_->session + 1;
    report.base = LineOf(base_->base);
    report.lost = work.leftOut;
    report.hasLaterState = work.coreState.has_value() || !work.partsOfOwners.empty();
    {
        MakingAgain making(tape, work, core_, session);
        const bool isFileOfTape = !digest_.empty() && base_->base.digest == digest_;
        if (!isFileOfTape) report.overwritten = making.Overwritten();
        if (!work.calls.empty()) MakeAsOneStep(work, making, progress, report);
        for (const WorkGroup& group : work.groups) {
            if (group.changes == 0) continue;
            const bool comesBack = ComesBack(group, choice_.openGroups);
            (comesBack ? report.recovered : report.left).push_back(ReportOn(group, making.Nodes()));
        }
        std::ranges::copy(making.Lost(), std::back_inserter(report.lost));
    }
    for (std::size_t other = 0; other < tape_.sessions.size(); ++other)
        if (other != base_->session)
            if (auto unsaved = FindUnsavedWork(tape_, other))
                report.others.push_back(*std::move(unsaved));
    core_.SetState(work.coreState, work.partsOfOwners);
    report.plainNodes = TurnIntoPlainNodes(core_);
    return report;
}

void Recovery::MakeAsOneStep(const MissingWork& work, MakingAgain& making,
                             const recorder::TapeProgress& progress, RecoveryReport& report) {
    TVL::AdaptorInterface& adaptor = core_.Objects().Adaptor();
    report.step = StepLabel(work, choice_.openGroups);
    if (adaptor.BeginUndoGroup(report.step) != 0)
        throw std::runtime_error("no undo group can be opened");
    try {
        making.MakeCalls(progress);
    } catch (...) {
        adaptor.CancelUndoGroup();
        throw;
    }
    if (adaptor.EndUndoGroup() != 0)
        report.lost.push_back("not all of it could be done, as the trace tells");
}

std::string WordOfUnsavedWork(const std::string& path, recorder::TapeProgress progress) try {
    std::error_code error;
    if (!std::filesystem::is_regular_file(platform::FromNarrow(path), error)) return {};
    std::string whyNot;
    if (!recorder::MappedFile::Open(path, whyNot)) return {};
    const recorder::TapeContents tape =
        recorder::ReadTape(path, recorder::MayBeBlank::kNo, std::move(progress));
    const auto work = FindUnsavedWork(tape, tape.sessions.size() - 1);
    if (!work) return {};
    return path + " holds work that was not saved when the host ended; to have it back: " +
           CommandFor(path, *work);
} catch (const std::runtime_error&) {
    return {};
}

}  // namespace player
