#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "platform/modules.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "tests/platform/message_recorder.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

using Texts = std::vector<std::string>;

std::string ModulePath(const std::string& name) {
    return std::string(TEST_MODULES) + "\\" + name + ".dll";
}

HMODULE Load(const std::string& name) {
    return LoadLibraryA(ModulePath(name).c_str());
}

int CallAnswer(HMODULE module) {
    int (*const routine)() = platform::Routine<int()>(module, "answer");
    return routine == nullptr ? -1 : routine();
}

bool IsMapped(const std::string& name) {
    const std::string path = std::string(TEST_MODULES) + "/" + name + ".so";
    void* const handle = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_NOW);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

class Loader : public testing::Test {
  protected:
    void TearDown() override {
        EXPECT_EQ(platform::CountLoadedModules(), 0U);
        EXPECT_EQ(platform::CountWindows(), 0U);
    }

    MessageRecorder told;
};

TEST_F(Loader, EntersAModuleOnceAndForgetsItAtTheLastFree) {
    const HMODULE module = Load("telling_module");
    ASSERT_NE(module, nullptr) << platform::LastLoadFailure();
    EXPECT_EQ(Load("telling_module"), module);
    EXPECT_EQ(platform::CountLoadedModules(), 1U);
    EXPECT_EQ(CallAnswer(module), 1);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(CallAnswer(module), 2);
    EXPECT_EQ(told.texts, (Texts{"constructed", "attach"}));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(told.texts, (Texts{"constructed", "attach", "detach", "destroyed"}));
    EXPECT_FALSE(IsMapped("telling_module"));
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(GetProcAddress(module, "answer"), nullptr);
    const HMODULE again = Load("telling_module");
    EXPECT_EQ(CallAnswer(again), 1);
    FreeLibrary(again);
}

TEST_F(Loader, FailsWhenTheEntryPointRefuses) {
    EXPECT_EQ(Load("refusing_module"), nullptr);
    EXPECT_EQ(told.texts, (Texts{"attach", "detach"}));
    EXPECT_FALSE(IsMapped("refusing_module"));
    EXPECT_NE(platform::LastLoadFailure().find("refusing_module.so"), std::string::npos);
}

TEST_F(Loader, LoadsAModuleThatLoadsAnotherWhileItIsEntered) {
    const HMODULE module = Load("nesting_module");
    ASSERT_NE(module, nullptr) << platform::LastLoadFailure();
    EXPECT_EQ(platform::CountLoadedModules(), 2U);
    FreeLibrary(module);
    EXPECT_EQ(told.texts, (Texts{"constructed", "attach", "detach", "destroyed"}));
    EXPECT_FALSE(IsMapped("nesting_module"));
}

TEST_F(Loader, TellsTheFileOfAModuleAndItsOwnRoutinesOnly) {
    const HMODULE module = Load("plain_module");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(CallAnswer(module), 42);
    // Its library's library exports the second.
    for (const char* const none : {"openDialog", "MessageBoxA", static_cast<const char*>(nullptr)})
        EXPECT_EQ(GetProcAddress(module, none), nullptr);
    const std::string path = std::string(TEST_MODULES) + "/plain_module.so";
    std::array<char, 1024> buffer{};
    EXPECT_EQ(GetModuleFileNameA(module, buffer.data(), 1024), path.size());
    EXPECT_EQ(buffer.data(), path);
    EXPECT_EQ(GetModuleFileNameA(module, buffer.data(), 5), 5U);
    EXPECT_EQ(buffer.data(), path.substr(0, 4));
    EXPECT_GT(GetModuleFileNameA(nullptr, buffer.data(), 1024), 0U);
    EXPECT_TRUE(std::string(buffer.data()).ends_with("test_platform"));
    FreeLibrary(module);
    EXPECT_EQ(GetModuleFileNameA(module, buffer.data(), 1024), 0U);
}

TEST_F(Loader, SaysWhyAFileCannotBeLoadedAndRejectsHandlesOfNoModule) {
    const TemporaryFolder folder;
    const std::string notAModule = folder.Write("not_a_module.so", "text");
    for (const std::string& path : {std::string("\\Core\\Core64.dll"), notAModule}) {
        EXPECT_EQ(LoadLibraryA(path.c_str()), nullptr);
        const std::string file = path == notAModule ? notAModule : "/Core/Core64.so";
        EXPECT_NE(platform::LastLoadFailure().find(file), std::string::npos);
    }
    EXPECT_EQ(LoadLibraryA(""), nullptr);
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
    int local = 0;
    for (void* const made : {static_cast<void*>(nullptr), static_cast<void*>(&local)}) {
        const auto module = static_cast<HMODULE>(made);
        EXPECT_FALSE(FreeLibrary(module));
        // The program has a record, for its resources, but was never loaded.
        EXPECT_EQ(GetProcAddress(module, "main"), nullptr);
    }
}

TEST_F(Loader, LeavesWindowsOfAFreedModuleWithoutAProcedure) {
    const HMODULE module = Load("nesting_module");
    HWND (*const open)() = platform::Routine<HWND()>(module, "openDialog");
    ASSERT_NE(open, nullptr);
    DestroyWindow(open());
    EXPECT_EQ(told.texts.back(), "dialog destroyed");
    const HWND left = open();
    ASSERT_TRUE(IsWindow(left));
    FreeLibrary(module);
    told.texts.clear();
    EXPECT_TRUE(DestroyWindow(left));
    EXPECT_TRUE(told.texts.empty());
}

TEST_F(Loader, FindsResourcesInTheModuleThatTheyBelongTo) {
    const auto note = MAKEINTRESOURCEA(11);
    const HMODULE module = Load("nesting_module");
    const HRSRC found = FindResourceA(module, note, "note");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(SizeofResource(module, found), 6U);
    const void* const data = LockResource(LoadResource(module, found));
    EXPECT_EQ(std::string(static_cast<const char*>(data), 6), "nested");
    EXPECT_EQ(FindResourceA(nullptr, note, "note"), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, found), 0U);
    FreeLibrary(module);
    EXPECT_EQ(FindResourceA(module, note, "note"), nullptr);
    EXPECT_EQ(LoadResource(module, found), nullptr);
}

}  // namespace
