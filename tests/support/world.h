#pragma once

#include <gtest/gtest.h>

#include "headless/session.h"
#include "recorder/recorder.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"
#include "tvl/adaptor_interface.h"

// What a Core is to find, or not to find, when the world comes up.
struct WorldSettings {
    std::string core = "whole";  // a puppet's name; an empty one leaves the install key out
    std::uint32_t version = TVL::kInterfaceVersion;
    bool refuses = false;
    bool hasDocuments = true;
    headless::SessionSettings host{};
    recorder::Recorder* recorder = nullptr;  // stands between, if there is one; outlives the world
};

// A running host with the adaptor and a Core that the test plays:
//
//     World world;
//     TVL::CNode* hip = world.Adaptor().CreateHelperNode(&rig, "Hip", nullptr, {}, nullptr);
//
// Its end shuts the host down and asserts that no hold is open, that nothing of the host's and of
// ours is alive but the UtilityManager, and that the Core's library is gone. A process has one at
// a time.
class World {
  public:
    explicit World(const WorldSettings& settings = {});
    ~World();

    headless::Session& Session() { return *session_; }
    TVL::AdaptorInterface& Adaptor();  // as the Core has it, while there is one
    PuppetCore& Core() { return core_; }
    void SetOption(int option, bool value) { core_.options[option] = value; }

    // The host's way down, now; nothing else may be asked of the host after it.
    void ShutDown();

    // Installs another Core, to be found by the next attach.
    void Install(const std::string& core) const;

    // Texts of the message boxes so far.
    const std::vector<headless::MessageBoxText>& MessageBoxes() const { return messageBoxes_; }

    // The trace on disk.
    std::string Trace() const;

    const std::filesystem::path& Folder() const { return folder_.Path(); }

  private:
    TemporaryFolder folder_;
    bool hasDocuments_;
    PuppetCore core_;
    std::vector<headless::MessageBoxText> messageBoxes_;
    std::unique_ptr<headless::Session> session_;
};
