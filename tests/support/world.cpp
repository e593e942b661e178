#include "tests/support/world.h"

#include "adaptor/max_adaptor_interface.h"
#include "headless/scene_view.h"
#include "platform/process.h"
#include "plugin/descriptors.h"

World::World(const WorldSettings& settings) : hasDocuments_(settings.hasDocuments) {
    std::filesystem::create_directories(Folder() / "Tarvo Works/Lumiset/data");
    Install(settings.core);
    platform::SetVariable("LUMISET_TRACE", folder_.File("trace.txt"));

    puppet::TheStage() = {};
    puppet::TheStage().version = settings.version;
    puppet::TheStage().onDetach = [this] { core_.Leave(); };
    if (!settings.refuses) puppet::TheStage().core = &core_;
    if (recorder::Recorder* const recorder = settings.recorder) {
        puppet::TheStage().between = std::bind_front(&recorder::Recorder::Attach, recorder);
        puppet::TheStage().betweenAtEnd = std::bind_front(&recorder::Recorder::Detach, recorder);
    }

    session_ = std::make_unique<headless::Session>(settings.host);
    session_->OnMessageBox(
        [this](const headless::MessageBoxText& box) { messageBoxes_.push_back(box); });
    for (int index = 0; index < kDescriptorCount; ++index)
        session_->RegisterClass(DescriptorAt(index));
    session_->Start();
}

World::~World() {
    ShutDown();
    const headless::Census census = headless::TakeCensus();
    EXPECT_EQ(census.objectCount, 0U);
    EXPECT_EQ(census.heapBlocks, 1U);  // the UtilityManager
    EXPECT_FALSE(puppet::TheStage().isLoaded);
    puppet::TheStage() = {};
}

void World::ShutDown() {
    if (!session_) return;
    EXPECT_FALSE(theHold.Holding());
    session_->ShutDown();
    session_.reset();
}

TVL::AdaptorInterface& World::Adaptor() {
    TVL::AdaptorInterface* const given = puppet::TheStage().adaptor;
    return given ? *given : *MaxAdaptorInterface::GetInstance();
}

void World::Install(const std::string& core) const {
    const std::string place = std::string(PUPPET_CORES) + "/" + core;
    const std::string documents = hasDocuments_ ? Folder().string() : "";
    PlaceRegistry(folder_, {core.empty() ? "" : place, documents});
}

std::string World::Trace() const {
    return ReadFile(folder_.File("trace.txt"));
}
