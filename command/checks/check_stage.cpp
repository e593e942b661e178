#include "command/checks/check_stage.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <utility>

#include "command/exit_status.h"
#include "command/output.h"
#include "headless/scene_view.h"
#include "player/replay/causes.h"
#include "recorder/stream/notes.h"
#include "tvl/panel.h"

namespace headless {
std::string CheckStage::Place::File(const std::string& what) const {
    return folder + '/' + name + '.' + what;
}

CheckStage::CheckStage(const GuestChoice& guests, Place place, std::uint64_t seed)
    : place_(std::move(place)), core_(guests.core), stage_(guests), random_(seed) {
    stage_.Host().OnMessageBox([this](const MessageBoxText& box) {
        std::cerr << "    " << kMessageBox << Quoted(box.text) << '\n';
        hasGatherError_ |= box.caption == TVL::kGatherCaption;
    });
    stage_.NeedCore();
    LookAround();
}

void CheckStage::Perform(const Step& step) {
    std::cerr << "  " << InTable(step.text) << std::endl;
    stage_.Note(recorder::note::kStep, step.text);
    step.kind->act(scene_, step.words);
}

void CheckStage::Do(const std::string& text) {
    const Step step = StepsOfOptions({text}).front();
    try {
        Perform(step);
    } catch (const Failure& failure) {
        throw Failure(Quoted(step.text) + " failed: " + failure.what());
    }
    LookAround();
}

bool CheckStage::Try(const std::string& text) {
    bool isDone = true;
    try {
        Perform(StepsOfOptions({text}).front());
    } catch (const Failure& failure) {
        std::cerr << "    " << InTable(failure.what()) << '\n';
        isDone = false;
    }
    LookAround();
    return isDone;
}

void CheckStage::Do(std::initializer_list<const char*> steps) {
    for (const char* const step : steps)
        Do(std::string(step));
}

void CheckStage::Press() {
    Do("press " + std::to_string(TVL::kStartButton));
}

void CheckStage::NeedWork() {
    const std::uint64_t before = SceneDigest();
    Press();
    if (SceneDigest() == before) throw NotApplicable{"its button leaves the scene as it is"};
}

void CheckStage::PressAndSave(const std::string& file) {
    NeedWork();
    Do("save " + Scene(file));
}

std::string CheckStage::Scene(const std::string& what) const {
    return player::AsWord(ScenePath(what));
}

void CheckStage::Expect(bool isSo, const std::string& elseFails) {
    if (!isSo) throw Failure(elseFails);
}

StageNews CheckStage::LookAround() {
    StageNews news = stage_.TakeNews();
    PrintEach(std::cerr, std::string("    ") + kComplaint, news.complaints);
    PrintEach(std::cerr, std::string("    ") + kComplaint, news.breaches);
    std::ranges::copy(news.breaches, std::back_inserter(faults_));
    return news;
}

std::vector<std::string> CheckStage::End() {
    std::cerr << "  the host ends" << std::endl;
    const std::size_t left = stage_.ShutDown();
    StageNews news = LookAround();
    for (const recorder::Finding& finding : stage_.Findings())
        faults_.push_back(Line(finding));
    std::ranges::move(news.complaints, std::back_inserter(faults_));
    if (left > 0) faults_.push_back("left over after shutdown: " + Counted(left, "host object"));
    return std::move(faults_);
}

}  // namespace headless
