#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/message_box.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

HMODULE LoadTelling() {
    return LoadLibraryA(MODULE_FOLDER "\\telling_module.dll");
}

int CallAnswer(HMODULE module) {
    int (*const routine)() = platform::Routine<int()>(module, "answer");
    return routine == nullptr ? -1 : routine();
}

// Hears of the module by its message boxes.
class Loader : public testing::Test {
  protected:
    Loader() {
        platform::SetMessageBoxHandler([this](const auto& box) { told += box.text + ' '; });
    }
    ~Loader() override {
        platform::SetMessageBoxHandler(nullptr);
        EXPECT_EQ(platform::CountLoadedModules(), 0U);
        EXPECT_EQ(platform::CountWindows(), 0U);
        EXPECT_EQ(dlopen(MODULE_FOLDER "/telling_module.so", RTLD_NOLOAD | RTLD_NOW), nullptr);
    }

    std::string told;
};

TEST_F(Loader, EntersAModuleOnceAndForgetsItAtTheLastFree) {
    const HMODULE module = LoadTelling();
    ASSERT_NE(module, nullptr) << platform::LastLoadFailure();
    EXPECT_EQ(LoadTelling(), module);
    EXPECT_EQ(platform::CountLoadedModules(), 1U);
    EXPECT_EQ(CallAnswer(module), 1);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(CallAnswer(module), 2);
    // The library's library exports it.
    EXPECT_FALSE(GetProcAddress(module, "MessageBoxA") || GetProcAddress(module, nullptr));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(told, "constructed attach detach destroyed ");
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(CallAnswer(module), -1);
    const HMODULE again = LoadTelling();
    EXPECT_EQ(CallAnswer(again), 1);
    FreeLibrary(again);
}

TEST_F(Loader, FailsWhenTheEntryPointRefuses) {
    platform::SetVariable("TELLING_REFUSES", "1");
    EXPECT_EQ(LoadTelling(), nullptr);
    platform::SetVariable("TELLING_REFUSES", "");
    EXPECT_EQ(told, "constructed attach detach destroyed ");
    EXPECT_NE(platform::LastLoadFailure().find("telling_module.so"), std::string::npos);
}

TEST_F(Loader, SaysWhyAFileCannotBeLoadedAndRejectsHandlesOfNoModule) {
    const TemporaryFolder folder;
    const std::string text = folder.Write("not_a_module.so", "text");
    for (const auto& [path, file] : {std::pair{text, text}, {"\\Core64.dll", "/Core64.so"}}) {
        EXPECT_EQ(LoadLibraryA(path.c_str()), nullptr);
        EXPECT_NE(platform::LastLoadFailure().find(file), std::string::npos);
    }
    EXPECT_FALSE(LoadLibraryA("") || LoadLibraryA(nullptr));
    int local = 0;
    for (void* const made : {static_cast<void*>(nullptr), static_cast<void*>(&local)}) {
        const auto module = static_cast<HMODULE>(made);
        // The program has a record, for its resources, but was never loaded.
        EXPECT_FALSE(FreeLibrary(module) || GetProcAddress(module, "main"));
    }
}

TEST_F(Loader, GivesAModuleItsResourcesAndTakesItsWindowsTheirProcedure) {
    const HMODULE module = LoadTelling();
    const auto number = MAKEINTRESOURCEA(11);
    const HRSRC note = FindResourceA(module, number, "note");
    const std::string text(static_cast<const char*>(LockResource(LoadResource(module, note))),
                           SizeofResource(module, note));
    EXPECT_EQ(text, "of the module");
    EXPECT_FALSE(FindResourceA(nullptr, number, "note") || SizeofResource(nullptr, note));
    HWND (*const open)() = platform::Routine<HWND()>(module, "openDialog");
    DestroyWindow(open());
    const HWND left = open();
    FreeLibrary(module);
    EXPECT_TRUE(DestroyWindow(left));
    EXPECT_EQ(told, "constructed attach closed detach destroyed ");
    EXPECT_FALSE(FindResourceA(module, number, "note") || LoadResource(module, note));
}

}  // namespace
