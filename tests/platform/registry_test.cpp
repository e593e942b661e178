#include "platform/registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <string>

#include "platform/process.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

using namespace std::string_literals;

const std::string kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string kMachine = "[HKEY_LOCAL_MACHINE\\";

struct Value {
    LSTATUS status = ERROR_SUCCESS;
    DWORD type = 0;
    std::string bytes;
};

class Registry : public testing::Test {
  protected:
    void SetUp() override {
        platform::UseRegistryFile(path_);
        testing::internal::CaptureStderr();
    }
    void TearDown() override {
        testing::internal::GetCapturedStderr();
        platform::SetVariable(platform::kRegistryVariable, "");
        EXPECT_EQ(platform::CountOpenKeys(), 0U);
    }

    void Write(const std::string& bytes) const { folder_.Write("test.reg", bytes); }

    static Value Read(const char* subKey, const char* name) {
        Value value;
        HKEY key = nullptr;
        value.status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, subKey, 0, KEY_READ, &key);
        if (value.status != ERROR_SUCCESS) return value;
        std::array<BYTE, 64> buffer{};
        auto size = static_cast<DWORD>(buffer.size());
        value.status = RegQueryValueExA(key, name, nullptr, &value.type, buffer.data(), &size);
        if (value.status == ERROR_SUCCESS)
            value.bytes.assign(buffer.begin(), buffer.begin() + size);
        RegCloseKey(key);
        return value;
    }

    // The value "v" of the key "k", read from the line that sets it; nothing if it is skipped.
    std::optional<Value> ReadLine(const std::string& line) const {
        Write(kHeader + kMachine + "k]\n" + line + "\n\"after\"=\"there\"\n");
        EXPECT_EQ(Read("k", "after").bytes, "there\0"s) << line;
        Value value = Read("k", "v");
        if (value.status != ERROR_SUCCESS) return std::nullopt;
        return value;
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.File("test.reg");
};

TEST_F(Registry, ReadsEveryFormOfValue) {
    const struct {
        const char* line;
        DWORD type;
        std::string bytes;
    } forms[] = {
        {R"("v"="C:\\Tools\\\"new\"")", REG_SZ, "C:\\Tools\\\"new\"\0"s},
        {R"("V" = "mixed" ; a comment)", REG_SZ, "mixed\0"s},
        {R"("v"="ends in a slash\\")", REG_SZ, "ends in a slash\\\0"s},
        {R"("v"="a\b")", REG_SZ, "a\\b\0"s},
        {R"("v"="")", REG_SZ, "\0"s},
        {"\"v\"=dword:0000002a", REG_DWORD, "\x2A\0\0\0"s},
        {"\"v\"=hex:01,ff, 2", REG_BINARY, "\x01\xFF\x02"s},
        {"\"v\"=hex:", REG_BINARY, ""},
        {"\"v\"=hex(2):25,00,41,00,00,00", REG_EXPAND_SZ, "%A\0"s},
        {"\"v\"=hex(1):e5,00,3d,d8,00,de,00,d8,41", REG_SZ, "å😀\xEF\xBF\xBD\0"s},
        {"\"v\"=hex(b):01,\\\r\n  02,\\\r\n  03", 11, "\1\2\3"s},
        {"\"v\"=dword:1\n\"v\"=\"the last stands\"", REG_SZ, "the last stands\0"s},
    };
    for (const auto& form : forms) {
        const std::optional<Value> value = ReadLine(form.line);
        ASSERT_TRUE(value) << form.line;
        EXPECT_EQ(value->type, form.type) << form.line;
        EXPECT_EQ(value->bytes, form.bytes) << form.line;
    }
}

TEST_F(Registry, SkipsADamagedLineAndReadsTheNext) {
    std::istringstream lines(R"("v"="no end|"v"="C:\|"v"="two" "texts"|"v|"v" "no sign"|"v"=|)"
                             R"("v"=dword:|"v"=dword:123456789|"v"=dword:x|"v"=hex:1,,2|)"
                             R"("v"=hex:100|"v"=hex(:00|"v"=hex(2)00|"v"=hex(x):00|v="bare name"|)"
                             R"(=|"v"=-1|"v"=qword:1|"v"=hex:01,-1|]|)"
                             "\x01\x02\xFF|@");
    std::ptrdiff_t count = 0;
    for (std::string line; std::getline(lines, line, '|'); ++count)
        EXPECT_FALSE(ReadLine(line)) << line;
    const std::string told = testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), count) << told;
    EXPECT_TRUE(told.starts_with(path_ + ":4: ")) << told;
}

TEST_F(Registry, AppliesItsLinesInOrderAndWithoutCase) {
    Write(kHeader + "\"v\"=\"no key\"\n" + kMachine + "a]\n\"v\"=\"1\"\n" + kMachine +
          "b\n\"v\"=\"behind a damaged key\"\n[]\n\"v\"=\"3\"\n" + kMachine + "Up\\C] ; end\n" +
          "@=\"default\"\n" + kMachine + "go]\n@=\"8\"\n" + kMachine + "go\\b]\n\"v\"=\"5\"\n" +
          kMachine +
          "gob]\n\"v\"=\"6\"\n\"w\"=\"7\"\n\"V\"=-\n[-HKEY_LOCAL_MACHINE\\GO]\n\"v\"=\"nowhere\"");
    EXPECT_EQ(Read("a", "v").bytes, "1\0"s);
    EXPECT_EQ(Read("gob", "w").bytes, "7\0"s);
    for (const auto& [key, value] :
         {std::pair{"b", "v"}, {"go", ""}, {"go\\b", "v"}, {"gob", "v"}, {"u", ""}})
        EXPECT_EQ(Read(key, value).status, ERROR_FILE_NOT_FOUND) << key;
    EXPECT_EQ(Read("uP\\c\\", "").bytes, "default\0"s);
    EXPECT_EQ(Read("up\\c", nullptr).bytes, "default\0"s);
    HKEY up = nullptr;
    HKEY below = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "up", 0, KEY_READ, &up), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyExA(up, "c", 0, KEY_READ, &below), ERROR_SUCCESS);
    RegCloseKey(up);
    EXPECT_EQ(RegQueryValueExA(below, "", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    RegCloseKey(below);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "up", 0, KEY_READ, &below), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(below, nullptr);
}

TEST_F(Registry, WritesNoMoreThanTheBufferHoldsAndNothingThroughHandlesOfNoKey) {
    Write(kHeader + kMachine + "k]\n\"v\"=\"four\"\n");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "k", 0, KEY_READ, &key), ERROR_SUCCESS);
    std::array<BYTE, 8> buffer{};
    buffer.fill('#');
    const auto query = [&](BYTE* data, DWORD size, LSTATUS expected) {
        EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, data, &size), expected);
        EXPECT_EQ(size, 5U);
    };
    query(nullptr, 0, ERROR_SUCCESS);
    query(buffer.data(), 4, ERROR_MORE_DATA);
    EXPECT_EQ(buffer[0], '#');
    query(buffer.data(), 5, ERROR_SUCCESS);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "four\0###"s);
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer.data(), nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    HKEY result = nullptr;
    for (const HKEY bad : {key, HKEY{}, reinterpret_cast<HKEY>(std::uintptr_t{7})}) {
        EXPECT_EQ(RegOpenKeyExA(bad, "k", 0, KEY_READ, &result), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegQueryValueExA(bad, "v", nullptr, nullptr, nullptr, nullptr),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegCloseKey(bad), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "k", 0, KEY_READ, nullptr),
              ERROR_INVALID_PARAMETER);
}

TEST_F(Registry, IsTheFileAsItIsWhenAKeyIsOpenedInEitherCoding) {
    const std::string text = kHeader + kMachine + "k]\r\n\"v\"=\"x\"\r\n";
    std::string wide = "\xFF\xFE";
    for (const char letter : text)
        wide += {letter, '\0'};
    Write(kHeader + kMachine + "k]\n\"v\"=\"1\"\n");
    EXPECT_EQ(Read("k", "v").bytes, "1\0"s);
    for (const std::string& bytes : {wide, "\xEF\xBB\xBF" + text}) {
        Write(bytes);
        EXPECT_EQ(Read("k", "v").bytes, "x\0"s);
    }
    for (const char* const none : {"/nowhere/lumiset.reg", "/", "/dev/zero"}) {
        platform::UseRegistryFile(none);
        EXPECT_EQ(Read("k", "v").status, ERROR_FILE_NOT_FOUND) << none;
    }
}

}  // namespace
