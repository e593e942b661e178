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

constexpr char kWhole[] = PUPPET_CORES "/whole";

std::string LibraryIn(const std::string& folder) {
    return folder + "/Core/" + platform::ModuleFile("Core64");
}

void Fail() {
    throw std::runtime_error("no\nlicence");
}

// A host with the plug-in and a Core that the test plays. At the end nothing is loaded.
struct Scenery {
    Scenery() {
        stage.core = &core;
        stage.onDetach = [this] { core.Leave(); };
        session.OnMessageBox([this](const auto& box) { boxes += box.text; });
    }
    ~Scenery() {
        session.ShutDown();
        EXPECT_FALSE(stage.isLoaded);
        EXPECT_EQ(platform::CountLoadedModules(), modulesBefore);
        stage = {};
    }

    void Start() {
        EXPECT_EQ(session.LoadPlugin(PLUGIN_MODULE), "");
        session.Start();
        session.OpenUtility(TVL::kPanelUtility);
        EXPECT_TRUE(session.PressButton(TVL::kStartButton));
    }

    std::size_t modulesBefore = platform::CountLoadedModules();
    puppet::Stage& stage = puppet::TheStage();
    PuppetCore core;
    std::string boxes;
    headless::Session session;
};

struct Row {
    std::string folder;
    std::string why;
    bool isSeenBefore = true;  // by a trial, without attaching it
    void (*prepare)(puppet::Stage&) = [](puppet::Stage&) {};
};

// What can be seen of a row's Core from outside. It is installed unless there is a seat for it.
auto Seen(const Row& row, const headless::CoreSeat* seat) {
    Scenery scenery;
    row.prepare(scenery.stage);
    const std::string before = seat ? seat->WhyAbsent() : "";
    scenery.Start();
    if (seat) {
        EXPECT_NE(before.find(row.isSeenBefore ? row.why : "has not asked"), std::string::npos);
        const std::string why = seat->WhyAbsent();
        EXPECT_TRUE(row.why.empty() ? why.empty() : why.find(row.why) != std::string::npos) << why;
        EXPECT_EQ(seat->IsAttached(), why.empty());
    }
    return std::tuple(scenery.session.KeptUtilities(), scenery.boxes, scenery.stage.attachCount,
                      scenery.stage.isLoaded, scenery.core.TakeCalls());
}

TEST(ACoreSeat, ShowsThePlugInWhatItWouldFindInstalledAndTellsWhyACoreIsAbsent) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "Core");
    folder.Write("Core/" + platform::ModuleFile("Core64"), "no library");
    const Row rows[] = {
        {kWhole, "", false},
        {"/nowhere", "there is no library "},
        {folder.Path().string(), "cannot be loaded: "},
        {PUPPET_CORES "/without_version", "exports no routine \"getVersion\""},
        {PUPPET_CORES "/without_attach", "exports no routine \"attach\""},
        {PUPPET_CORES "/without_detach", "exports no routine \"detach\""},
        {PUPPET_CORES "/other_version",
         "version 8109 of the interface, and the adaptor has version 8108"},
        {kWhole, "getVersion threw: no licence", true,
         [](puppet::Stage& on) { on.onVersion = Fail; }},
        {kWhole, "attach threw: no licence", false, [](puppet::Stage& on) { on.onAttach = Fail; }},
        {kWhole, "attach gave null", false, [](puppet::Stage& on) { on.core = nullptr; }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.folder + ' ' + row.why);
        PlaceRegistry(folder, {row.folder, ""});
        std::optional<headless::CoreSeat> seat(LibraryIn(row.folder));
        const auto seated = Seen(row, &*seat);
        seat.reset();
        EXPECT_EQ(seated, Seen(row, nullptr));
    }
}

TEST(ACoreSeat, HasItsLibraryLoadedAnewForEachAttachAndPressesTheOptions) {
    const TemporaryFolder folder;
    PlaceRegistry(folder, {});
    headless::CoreSeat seat(LibraryIn(kWhole));
    EXPECT_TRUE(seat.Options().empty() && !seat.Press(1028));
    Scenery scenery;
    scenery.core.options = {{1030, false}};
    scenery.Start();
    scenery.core.onCall = [](const std::string&) { Fail(); };
    std::string options;
    for (const headless::OptionView& option : seat.Options())
        options += option.name + (option.isButton ? ": button " : ": switch ") +
                   std::to_string(option.id) + (option.isKnown ? " known" : "") +
                   (option.value == false ? " off\n" : "\n");
    EXPECT_THROW(seat.Press(1028), std::runtime_error);
    EXPECT_EQ(options,
              "Use dynamic meshes: switch 1030 known off\n"
              "Use optimized transform controller: switch 1027\n"
              "Convert all controllers to default PRS controller: button 1028\n");
    scenery.core.onCall = {};

    EXPECT_TRUE(scenery.session.PlaceButton(TVL::kAttachButton, TVL::kDetachText));
    for (const bool isHere : {true, false, true}) {
        EXPECT_TRUE(seat.IsAttached() == isHere && scenery.stage.isLoaded == isHere);
        EXPECT_EQ(seat.WhyAbsent().ends_with(" has left"), !isHere);
        EXPECT_EQ(seat.Press(1028), isHere);
        EXPECT_EQ(seat.Press("Convert all controllers to default PRS controller"), isHere);
        EXPECT_FALSE(seat.Press("Use dynamic meshes"));
        EXPECT_TRUE(scenery.session.PressButton(isHere ? TVL::kDetachText : TVL::kAttachText));
    }
    scenery.session.PressButton(TVL::kAttachText);
    scenery.stage.onDetach = [&] {
        EXPECT_FALSE(seat.IsAttached());
        scenery.core.Leave(), Fail();
    };
    EXPECT_TRUE(scenery.session.PressButton(TVL::kDetachText));
    EXPECT_TRUE(seat.WhyAbsent().ends_with("detach threw: no licence"));
}

TEST(ACoreSeat, FindsTheInstalledCoreElseTheOneBesideTheProgram) {
    const TemporaryFolder folder;
    const std::string tooLong(1024, 'x');
    const std::string program = platform::ToNarrow(platform::ProgramFile().parent_path());
    for (const std::string& installed : {std::string(kWhole), std::string(), tooLong}) {
        PlaceRegistry(folder, {installed, ""});
        const headless::CoreSeat seat;
        const bool isFound = installed != tooLong;
        EXPECT_EQ(platform::FromNarrow(seat.Library()),
                  isFound ? platform::FromNarrow(LibraryIn(installed.empty() ? program : installed))
                          : "");
        EXPECT_NE(seat.WhyAbsent().find(isFound ? "the plug-in has not asked for "
                                                : " is longer than 1023 bytes: "),
                  std::string::npos);
    }
}

}  // namespace
