#include "support/world.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "adaptor/max_adaptor_interface.h"
#include "headless/scene_view.h"
#include "host/hold.h"
#include "plugin/descriptors.h"

namespace {

constexpr std::size_t kUtilityManagerBlock = 1;

std::filesystem::path NewFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "lumiset_XXXXXX").string();
    if (!mkdtemp(path.data())) throw std::filesystem::filesystem_error(path, {});
    return path;
}

void SetVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);
}

// In the text form of the registry.
std::string Entry(const std::string& key, const std::string& name, const std::string& value) {
    std::string escaped;
    for (const char c : value) {
        if (c == '\\' || c == '"') escaped += '\\';
        escaped += c;
    }
    return "[" + key + "]\n\"" + name + "\"=\"" + escaped + "\"\n\n";
}

}  // namespace

World::World(const WorldSettings& settings)
    : folder_(NewFolder()), hasDocuments_(settings.hasDocuments) {
    std::filesystem::create_directories(folder_ / "Tarvo Works/Lumiset/data");
    Install(settings.core);
    SetVariable("LUMISET_REGISTRY", (folder_ / "world.reg").string());
    SetVariable("LUMISET_TRACE", (folder_ / "trace.txt").string());

    puppet::TheStage() = {};
    puppet::TheStage().version = settings.version;
    puppet::TheStage().onDetach = [this] { core_.Leave(); };
    if (!settings.refuses) puppet::TheStage().core = &core_;

    session_ = std::make_unique<headless::Session>(settings.host);
    session_->OnMessageBox(
        [this](const headless::MessageBoxText& box) { messageBoxes_.push_back(box); });
    for (int index = 0; index < kDescriptorCount; ++index) {
        session_->RegisterClass(DescriptorAt(index));
    }
    session_->Start();
}

World::~World() {
    ShutDown();
    const headless::Census census = headless::TakeCensus();
    EXPECT_EQ(census.objectCount, 0U);
    EXPECT_EQ(census.heapBlocks, kUtilityManagerBlock);
    EXPECT_FALSE(puppet::TheStage().isLoaded);
    puppet::TheStage() = {};
    std::filesystem::remove_all(folder_);
}

void World::ShutDown() {
    if (!session_) return;
    EXPECT_FALSE(theHold.Holding());
    session_->ShutDown();
    session_.reset();
}

TVL::AdaptorInterface& World::Adaptor() {
    return *MaxAdaptorInterface::GetInstance();
}

void World::Install(const std::string& core) const {
    std::ofstream file(folder_ / "world.reg");
    file << "Windows Registry Editor Version 5.00\n\n";
    if (core != kNoPuppet) {
        file << Entry("HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools",
                      "datapath", std::string(PUPPET_CORES) + "/" + core);
    }
    if (hasDocuments_) {
        file << Entry(
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\"
            "Explorer\\Shell Folders",
            "Personal", folder_.string());
    }
}

std::string World::Trace() const {
    std::ostringstream text;
    text << std::ifstream(folder_ / "trace.txt").rdbuf();
    return text.str();
}
