#pragma once

#include <gtest/gtest.h>

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

    FileWorld() {
        odd::Utility::written = {{1, "of the utility"}};
        odd::saving = 'g';
        odd::loading = "r";
    }
    ~FileWorld() override { End(); }

    void Start(Classes classes, const headless::SessionSettings& settings = {});
    void End();

    std::string File(const std::string& name) const { return folder.File(name); }

    // The scene that is there, saved; its bytes.
    std::string Save(const std::string& name) {
        EXPECT_EQ(host->SaveScene(File(name)).error, "");
        return ReadFile(File(name));
    }

    // What did not load, a line each.
    std::vector<std::string> Open(const std::string& name) {
        const headless::FileOutcome outcome = host->OpenScene(File(name));
        EXPECT_EQ(outcome.error, "");
        return outcome.complaints;
    }

    INode* Add(const char* name, Object* object, INode* parent = nullptr);

    // In the file "built": nodes of every kind of object and controller, odd ones among them, with
    // everything that a scene file keeps.
    std::string SaveBuilt();

    const TemporaryFolder folder;
    std::unique_ptr<headless::Session> host;
};
