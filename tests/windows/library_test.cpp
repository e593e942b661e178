#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "resources/resource_ids.h"
#include "tests/windows/dialog_template.h"
#include "tests/windows/mapped_library.h"

// The libraries as the system's loader and its resource calls see them.
namespace {

using Names = std::map<int, std::string>;

std::vector<std::string> NamesOf(const MappedLibrary& library) {
    std::vector<std::string> names;
    for (const auto& [ordinal, name] : library.Exports())
        names.push_back(name);
    std::ranges::sort(names);
    return names;
}

// Each must be there on every Windows, without anything having been installed. One of them has the
// C heap, on which either side frees what the other has made. Wine passes over in silence what is
// freed on another heap, so that nothing else would show it.
void ExpectOfTheSystemAlone(std::set<std::string> imports) {
    EXPECT_EQ(imports.erase("msvcrt.dll"), 1U);
    for (const char* system : {"kernel32.dll", "user32.dll", "advapi32.dll", "comctl32.dll"})
        imports.erase(system);
    EXPECT_EQ(imports, std::set<std::string>());
}

TEST(TheLibrary, ExportsItsFourRoutinesByOrdinalAndName) {
    const MappedLibrary plugin(PLUGIN_MODULE);
    ASSERT_NE(plugin.Module(), nullptr);
    EXPECT_EQ(plugin.Exports(), (Names{{1, "LibDescription"},
                                       {2, "LibNumberClasses"},
                                       {3, "LibClassDesc"},
                                       {4, "LibVersion"}}));
}

TEST(TheLibrary, NeedsTheSystemAndTheHostAlone) {
    std::set<std::string> imports = MappedLibrary(PLUGIN_MODULE).Imports();
    EXPECT_EQ(imports.erase("headless_host.dll"), 1U);
    ExpectOfTheSystemAlone(imports);
}

TEST(TheOtherLibraries, NeedTheSystemAlone) {
    const MappedLibrary core(CORE_MODULE);
    EXPECT_EQ(NamesOf(core), (std::vector<std::string>{"attach", "detach", "getVersion"}));
    ExpectOfTheSystemAlone(core.Imports());
    ExpectOfTheSystemAlone(MappedLibrary(CORE_APART_MODULE).Imports());
    ExpectOfTheSystemAlone(MappedLibrary(HOST_MODULE).Imports());
}

TEST(TheResources, HoldTwoDialogsOfOneButtonEach) {
    const DialogTemplate expected[] = {
        {.id = PanelDialog,
         .style = DS_SETFONT | WS_CHILD,
         .width = 108,
         .height = 30,
         .font = L"MS Shell Dlg",
         .points = 8,
         .controls = {{StartButton, L"Start Lumiset", 7, 7, 94, 16}}},
        {.id = ConvertDialog,
         .style = DS_SETFONT | WS_CHILD | WS_VISIBLE,
         .width = 108,
         .height = 41,
         .font = L"MS Sans Serif",
         .points = 8,
         .controls = {{ConvertButton, L"Convert to PRS controller", 14, 7, 82, 14}}},
    };
    const MappedLibrary plugin(PLUGIN_MODULE);
    for (const DialogTemplate& dialog : expected)
        EXPECT_EQ(ReadDialog(plugin.Module(), dialog.id), dialog);
}

TEST(TheResources, HoldTheOptionPanelAsPlainText) {
    const MappedLibrary plugin(PLUGIN_MODULE);
    const HRSRC found = FindResourceA(plugin.Module(), MAKEINTRESOURCEA(OptionPanel), "XMLFile");
    ASSERT_NE(found, nullptr);
    const std::string text(
        static_cast<const char*>(LockResource(LoadResource(plugin.Module(), found))),
        SizeofResource(plugin.Module(), found));
    EXPECT_TRUE(text.starts_with("<group>"));
    EXPECT_NE(text.find("<id>1028</id>"), std::string::npos);
    EXPECT_EQ(FindResourceA(plugin.Module(), MAKEINTRESOURCEA(146), MAKEINTRESOURCEA(9)), nullptr);
}

}  // namespace
