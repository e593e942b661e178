#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "headless/session.h"
#include "tvl/core_interface.h"
#include "tvl/node.h"

// A Core that is there and does nothing, so that what is measured is this side alone.
class IdleCore final : public CoreInterface {
  public:
    XMLNode GetCoreState() override { return {}; }
    void SetCoreState(XMLNode) override {
        if (onLoad) onLoad();
    }
    void ResetCore() override {}
    void ShowCore(TVL::WindowHandle) override {}
    void NotifyTimeChanged(double) override {}
    bool IsCoreRunning() override { return false; }
    void StopCore() override {}
    TVL::Util::MessageNode* GetOptionNode(int, int) override { return nullptr; }
    void BindOption(int, int) override {}
    void GetOptionValue(int option, bool* value) override;

    std::function<void()> onLoad;
};

// A file that goes with the benchmark.
class BenchFile {
  public:
    explicit BenchFile(const char* name)
        : path_((std::filesystem::temp_directory_path() / name).string()) {}
    ~BenchFile() { std::filesystem::remove(path_); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;
    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

// A running host with the linked plug-in and an idle Core. A process has one at a time.
class BenchWorld {
  public:
    BenchWorld();
    ~BenchWorld();
    BenchWorld(const BenchWorld&) = delete;
    BenchWorld& operator=(const BenchWorld&) = delete;

    headless::Session& Session() { return session_; }
    IdleCore& Core() { return core_; }

    // A node in the scene, with the adaptor's controller.
    TVL::CoreNode& MakeNode();

  private:
    IdleCore core_;
    headless::Session session_;
};
