#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "tests/scene_file/odd_classes.h"
#include "tests/support/folder/temporary_folder.h"

// A folder, and a host in it that comes and goes.
class FileWorld : public testing::Test {
  protected:
    enum class Classes { kKnown, kMissing };

    FileWorld() { odd::Utility::text = "of the utility"; }
    ~FileWorld() override {
        End();
        odd::saving = odd::loading = odd::Manner::kGood;
    }

    headless::Session& Start(Classes classes, const headless::SessionSettings& settings = {}) {
        End();
        session_ = std::make_unique<headless::Session>(settings);
        if (classes == Classes::kKnown) odd::Register(*session_);
        session_->Start();
        return *session_;
    }

    void End() {
        if (!session_) return;
        session_.reset();
        EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
        EXPECT_EQ(headless::TakeCensus().heapBlocks, 0U);
    }

    std::string File(const std::string& name) const { return folder_.File(name); }
    void WriteBytes(const std::string& name, const std::string& bytes) const {
        folder_.Write(name, bytes);
    }
    std::size_t FilesInFolder() const;

    // The scene that is there, saved; its bytes.
    std::string Save(const std::string& name) {
        EXPECT_EQ(Host().SaveScene(File(name)).error, "");
        return ReadFile(File(name));
    }

    // What BuildScene builds, in the file "built".
    std::string SaveBuilt() {
        Start(Classes::kKnown);
        BuildScene();
        return Save("built");
    }

    // Nodes of every kind of object and controller, odd ones among them, with everything that a
    // scene file keeps.
    void BuildScene();

    headless::Session& Host() { return *session_; }

  private:
    TemporaryFolder folder_;
    std::unique_ptr<headless::Session> session_;
};
