#include <dlfcn.h>

#include "platform/modules.h"
#include "tests/platform/platform_test.h"

namespace {

HMODULE LoadTelling() {
    return LoadLibraryA(MODULE_FOLDER "\\telling_module.dll");
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
        EXPECT_EQ(dlopen(MODULE_FOLDER "/telling_module.so", RTLD_NOLOAD | RTLD_NOW), nullptr);
    }

    std::string told;
};

TEST_F(Loader, EntersAModuleOnceAndForgetsItAndItsProceduresAtTheLastFree) {
    const HMODULE module = LoadTelling();
    ASSERT_NE(module, nullptr) << platform::LastLoadFailure();
    EXPECT_EQ(LoadTelling(), module);
    EXPECT_EQ(platform::CountLoadedModules(), 1U);
    EXPECT_TRUE(FreeLibrary(module));
    // The library's library exports it.
    EXPECT_FALSE(GetProcAddress(module, "MessageBoxA") || GetProcAddress(module, nullptr));
    HWND (*const open)(HMODULE) = platform::Routine<HWND(HMODULE)>(module, "openDialog");
    DestroyWindow(open(module));
    const HWND left = open(module);
    EXPECT_TRUE(FreeLibrary(module) && DestroyWindow(left));
    EXPECT_EQ(told, "attach closed detach destroyed ");
    for (const HMODULE none : {module, HMODULE{}, MadeUp<HMODULE>()})
        EXPECT_FALSE(FreeLibrary(none) || GetProcAddress(none, "openDialog"));
    FreeLibrary(LoadTelling());
    EXPECT_EQ(told, "attach closed detach destroyed attach detach destroyed ");
}

TEST_F(Loader, SaysWhyAFileCannotBeLoaded) {
    platform::SetVariable("TELLING_REFUSES", "1");
    EXPECT_EQ(LoadTelling(), nullptr);
    platform::SetVariable("TELLING_REFUSES", "");
    EXPECT_EQ(told, "attach detach destroyed ");
    EXPECT_NE(platform::LastLoadFailure().find("telling_module.so"), std::string::npos);

    const TemporaryFolder folder;
    const std::string text = folder.Write("not_a_module.so", "text");
    for (const auto& [path, file] : {std::pair{text, text}, {"\\Core64.dll", "/Core64.so"}}) {
        EXPECT_EQ(LoadLibraryA(path.c_str()), nullptr);
        EXPECT_NE(platform::LastLoadFailure().find(file), std::string::npos);
    }
    EXPECT_FALSE(LoadLibraryA("") || LoadLibraryA(nullptr));
}

}  // namespace
