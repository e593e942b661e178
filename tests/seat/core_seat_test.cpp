#include "headless/core_seat.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "headless/session.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"
#include "tvl/panel.h"

namespace {

using Texts = std::vector<std::string>;

std::string PuppetFolder(const std::string& name) {
    return std::string(PUPPET_CORES "/") + name;
}

std::string LibraryIn(const std::string& folder) {
    return folder + "/Core/" + platform::ModuleFile("Core64");
}

// A host with the plug-in, as the command brings it up, and a Core that the test plays. At the end
// nothing that was loaded is left.
class Stage {
  public:
    Stage() {
        stage.core = &core;
        stage.onDetach = [this] { core.Leave(); };
    }
    ~Stage() {
        session.ShutDown();
        EXPECT_FALSE(stage.isLoaded);
        EXPECT_EQ(platform::CountLoadedModules(), modulesBefore_);
        stage = {};
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    void Start() {
        session.OnMessageBox([this](const auto& box) { boxes.push_back(box.text); });
        EXPECT_EQ(session.LoadPlugin(PLUGIN_MODULE), "");
        session.Start();
        session.OpenUtility(TVL::kPanelUtility);
        EXPECT_TRUE(session.PressButton(TVL::kStartButton));
    }

    // What can be seen of a Core from outside.
    auto Seen() {
        return std::tuple(session.KeptUtilities(), boxes, stage.attachCount, stage.isLoaded,
                          core.TakeCalls());
    }

    puppet::Stage& stage = puppet::TheStage();
    PuppetCore core;
    Texts boxes;

  private:
    std::size_t modulesBefore_ = platform::CountLoadedModules();

  public:
    headless::Session session;
};

struct Row {
    std::string folder;
    std::string why;
    std::function<void(puppet::Stage&)> prepare = [](puppet::Stage&) {};
    bool isSeenBefore = true;  // by a trial, without attaching it
};

// With the library of a row seated, and installed in the usual way.
auto SeenSeated(const Row& row) {
    const headless::CoreSeat seat(LibraryIn(row.folder));
    Stage world;
    row.prepare(world.stage);
    EXPECT_EQ(platform::FromNarrow(seat.Library()), platform::FromNarrow(LibraryIn(row.folder)));
    const std::string before = seat.WhyAbsent();
    EXPECT_NE(before.find(row.isSeenBefore ? row.why : "has not asked"), std::string::npos)
        << before;
    EXPECT_FALSE(seat.IsAttached() || world.stage.isLoaded);
    world.Start();
    const std::string why = seat.WhyAbsent();
    EXPECT_EQ(seat.IsAttached(), row.why.empty());
    EXPECT_TRUE(row.why.empty() ? why.empty() : why.find(row.why) != std::string::npos) << why;
    EXPECT_EQ(why.find('\n'), std::string::npos);
    return world.Seen();
}

auto SeenInstalled(const Row& row, const TemporaryFolder& folder) {
    PlaceRegistry(folder, {row.folder, ""});
    Stage world;
    row.prepare(world.stage);
    world.Start();
    return world.Seen();
}

TEST(ACoreSeat, ShowsThePlugInWhatItWouldFindInstalledAndTellsWhyACoreIsAbsent) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "Core");
    folder.Write("Core/" + platform::ModuleFile("Core64"), "no library");
    const auto fails = [] { throw std::runtime_error("no\nlicence"); };
    const Row rows[] = {
        {PuppetFolder("whole"), "", [](auto&) {}, false},
        {PuppetFolder("nowhere"), "there is no library "},
        {folder.Path().string(), "cannot be loaded: "},
        {PuppetFolder("without_version"), "exports no routine \"getVersion\""},
        {PuppetFolder("without_attach"), "exports no routine \"attach\""},
        {PuppetFolder("without_detach"), "exports no routine \"detach\""},
        {PuppetFolder("other_version"),
         "version 8109 of the interface, and the adaptor has version 8108"},
        {PuppetFolder("whole"), "getVersion threw: no licence",
         [&](puppet::Stage& stage) { stage.onVersion = fails; }},
        {PuppetFolder("whole"), "attach threw: no licence",
         [&](puppet::Stage& stage) { stage.onAttach = fails; }, false},
        {PuppetFolder("whole"), "refused: its routine attach gave null",
         [](puppet::Stage& stage) { stage.core = nullptr; }, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.folder + ' ' + row.why);
        const auto seated = SeenSeated(row);
        EXPECT_EQ(seated, SeenInstalled(row, folder));
    }
}

TEST(ACoreSeat, HasItsLibraryLoadedAnewForEachAttachAndPressesTheOptions) {
    headless::CoreSeat seat(LibraryIn(PuppetFolder("whole")));
    EXPECT_TRUE(seat.Options().empty() && !seat.Press(1028));
    Stage world;
    world.core.options = {{1030, false}};
    world.Start();
    const auto options = [&] {
        std::string lines;
        for (const headless::OptionView& option : seat.Options())
            lines += std::to_string(option.id) + (option.isButton ? " button" : " switch") +
                     (option.isKnown ? " known" : "") +
                     (option.value ? (*option.value ? " on" : " off") : "") + ' ' + option.name +
                     '\n';
        return lines;
    };
    EXPECT_EQ(options(),
              "1030 switch known off Use dynamic meshes\n"
              "1027 switch Use optimized transform controller\n"
              "1028 button known Convert all controllers to default PRS controller\n");
    EXPECT_TRUE(seat.Press(1028));
    EXPECT_NE(world.core.convertButton->GetListenerCount(), 0);
    world.core.onOptionAsked = [](int) { throw 1; };
    EXPECT_EQ(options().substr(0, 12), "1030 switch ");
    world.core.onOptionAsked = {};

    EXPECT_TRUE(world.session.PlaceButton(TVL::kAttachButton, TVL::kDetachText));
    for (const char* text : {TVL::kDetachText, TVL::kAttachText}) {
        EXPECT_TRUE(world.session.PressButton(text));
        const bool isHere = text == std::string(TVL::kAttachText);
        EXPECT_TRUE(seat.IsAttached() == isHere && world.stage.isLoaded == isHere);
        EXPECT_EQ(seat.WhyAbsent().ends_with(" has left"), !isHere);
        EXPECT_EQ(seat.Press(1028), isHere);
    }
    world.stage.onDetach = [&] {
        world.core.Leave();
        throw std::runtime_error("late");
    };
    EXPECT_TRUE(world.session.PressButton(TVL::kDetachText));
    EXPECT_TRUE(seat.WhyAbsent().ends_with("detach threw: late"));
}

TEST(ACoreSeat, FindsTheInstalledCoreElseTheOneBesideTheProgram) {
    const TemporaryFolder folder;
    const auto seen = [&](const std::string& installed) {
        PlaceRegistry(folder, {installed, ""});
        const headless::CoreSeat seat;
        return std::pair(platform::FromNarrow(seat.Library()), seat.WhyAbsent());
    };
    const std::string whole = PuppetFolder("whole");
    EXPECT_EQ(seen(whole).first, platform::FromNarrow(LibraryIn(whole)));
    EXPECT_EQ(seen(whole).second.find("the plug-in has not asked for "), 0U);
    EXPECT_EQ(seen("").first,
              platform::ProgramFile().parent_path() / "Core" / platform::ModuleFile("Core64"));
    const std::string tooLong(1024, 'x');
    EXPECT_EQ(seen(tooLong),
              std::pair(std::filesystem::path(),
                        "\"datapath\" of the install key is longer than 1023 bytes: " + tooLong));
}

}  // namespace
