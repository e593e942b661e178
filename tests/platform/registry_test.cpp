#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "platform/testing.h"
#include "platform/win32.h"

namespace {

using namespace std::string_literals;

const std::string kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

struct Value {
    LSTATUS status = ERROR_SUCCESS;
    DWORD type = 0;
    std::string bytes;
};

class Registry : public testing::Test {
  protected:
    void SetUp() override {
        setenv("LUMISET_REGISTRY", path_.c_str(), 1);
        testing::internal::CaptureStderr();
    }

    void TearDown() override {
        testing::internal::GetCapturedStderr();
        unsetenv("LUMISET_REGISTRY");
        EXPECT_EQ(platform::CountOpenKeys(), 0U);
    }

    void Write(const std::string& bytes) const {
        std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes;
    }

    static LSTATUS OpenStatus(const char* subKey) {
        HKEY key = nullptr;
        const LSTATUS status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, subKey, 0, KEY_READ, &key);
        if (status == ERROR_SUCCESS) RegCloseKey(key);
        return status;
    }

    static Value Read(const char* subKey, const char* name) {
        Value value;
        HKEY key = nullptr;
        value.status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, subKey, 0, KEY_READ, &key);
        if (value.status != ERROR_SUCCESS) return value;
        std::array<BYTE, 1024> buffer{};
        auto size = static_cast<DWORD>(buffer.size());
        value.status = RegQueryValueExA(key, name, nullptr, &value.type, buffer.data(), &size);
        if (value.status == ERROR_SUCCESS)
            value.bytes.assign(buffer.begin(), buffer.begin() + size);
        RegCloseKey(key);
        return value;
    }

    // The value "v" of the key "k", read from the line that sets it; nothing if it is skipped.
    std::optional<Value> ReadLine(const std::string& line) const {
        Write(kHeader + "[HKEY_LOCAL_MACHINE\\k]\n" + line + "\n\"after\"=\"there\"\n");
        EXPECT_EQ(Read("k", "after").bytes, "there\0"s) << line;
        Value value = Read("k", "v");
        if (value.status != ERROR_SUCCESS) return std::nullopt;
        return value;
    }

    const std::string path_ = testing::TempDir() + "registry_test.reg";
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
    const char* const lines[] = {
        R"("v"="no end)",
        R"("v"="C:\)",
        R"("v"="two" "texts")",
        R"("v)",
        R"("v" "no sign")",
        R"("v"=)",
        R"("v"=dword:)",
        R"("v"=dword:123456789)",
        R"("v"=dword:x)",
        R"("v"=hex:1,,2)",
        R"("v"=hex:100)",
        R"("v"=hex(:00)",
        R"("v"=hex(2)00)",
        R"("v"=hex(x):00)",
        R"(v="bare name")",
        R"(=)",
        R"("v"=-1)",
        "\"v\"=qword:1",
        "\"v\"=hex:01,-1",
        "]",
        "\x01\x02\xFF",
        "@",
    };
    int count = 0;
    for (const char* const line : lines) {
        EXPECT_FALSE(ReadLine(line)) << line;
        ++count;
    }
    const std::string told = testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    const std::string place = path_ + ":4: ";
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), count) << told;
    EXPECT_EQ(told.substr(0, place.size()), place);
}

TEST_F(Registry, KeepsValuesBehindADamagedKeyOutOfTheKeyBefore) {
    Write(kHeader +
          "\"v\"=\"no key\"\n[HKEY_LOCAL_MACHINE\\a]\n\"v\"=\"1\"\n[HKEY_LOCAL_MACHINE\\b\n"
          "\"v\"=\"2\"\n[]\n\"v\"=\"3\"\n[HKEY_LOCAL_MACHINE\\c] ; end\n\"v\"=\"4\"");
    EXPECT_EQ(Read("a", "v").bytes, "1\0"s);
    EXPECT_EQ(Read("b", "v").status, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Read("c", "v").bytes, "4\0"s);
}

TEST_F(Registry, RemovesWhatALaterLineRemoves) {
    Write(kHeader +
          "[HKEY_LOCAL_MACHINE\\a\\b]\n\"v\"=\"1\"\n[HKEY_LOCAL_MACHINE\\ab]\n\"v\"=\"2\"\n"
          "\"w\"=\"3\"\n\"V\"=-\n[-HKEY_LOCAL_MACHINE\\A]\n\"v\"=\"nowhere\"\n");
    EXPECT_EQ(OpenStatus("a"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenStatus("a\\b"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Read("ab", "v").status, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Read("ab", "w").bytes, "3\0"s);
}

TEST_F(Registry, FindsKeysWithoutCaseAndThroughKeysThatAreOpen) {
    Write(kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Works\\Tools]\n@=\"default\"\n");
    EXPECT_EQ(Read("software\\WORKS\\tools\\", "").bytes, "default\0"s);
    EXPECT_EQ(Read("software\\works\\tools", nullptr).bytes, "default\0"s);
    EXPECT_EQ(OpenStatus("software\\wor"), ERROR_FILE_NOT_FOUND);
    HKEY works = nullptr;
    HKEY tools = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Works", 0, KEY_READ, &works), 0);
    EXPECT_EQ(RegOpenKeyExA(works, "Tools", 0, KEY_READ, &tools), 0);
    RegCloseKey(works);
    EXPECT_EQ(RegQueryValueExA(tools, "", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    RegCloseKey(tools);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &tools),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(tools, nullptr);
}

TEST_F(Registry, TellsTheSizeAndWritesNoMoreThanTheBufferHolds) {
    Write(kHeader + "[HKEY_LOCAL_MACHINE\\k]\n\"v\"=\"four\"\n");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "k", 0, KEY_READ, &key), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5U);
    std::array<BYTE, 8> buffer{};
    buffer.fill('#');
    size = 4;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer.data(), &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 5U);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer.data(), &size), ERROR_SUCCESS);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "four\0###"s);
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, buffer.data(), nullptr),
              ERROR_INVALID_PARAMETER);
    RegCloseKey(key);
}

TEST_F(Registry, RefusesHandlesOfNoOpenKey) {
    HKEY key = nullptr;
    Write(kHeader + "[HKEY_LOCAL_MACHINE\\k]\n");
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "k", 0, KEY_READ, &key), ERROR_SUCCESS);
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

TEST_F(Registry, SeesTheFileAsItIsWhenAKeyIsOpened) {
    Write(kHeader + "[HKEY_LOCAL_MACHINE\\k]\n\"v\"=\"1\"\n");
    EXPECT_EQ(Read("k", "v").bytes, "1\0"s);
    Write(kHeader + "[HKEY_LOCAL_MACHINE\\k]\n\"v\"=\"2\"\n");
    EXPECT_EQ(Read("k", "v").bytes, "2\0"s);
    for (const char* const none : {"/nowhere/lumiset.reg", "/", "/dev/zero", ""}) {
        setenv("LUMISET_REGISTRY", none, 1);
        EXPECT_EQ(OpenStatus("k"), ERROR_FILE_NOT_FOUND) << none;
    }
}

TEST_F(Registry, ReadsUtf16AndUtf8WithTheirMarks) {
    const std::string text = kHeader + "[HKEY_LOCAL_MACHINE\\k]\r\n\"v\"=\"x\"\r\n";
    std::string wide = "\xFF\xFE";
    for (const char letter : text)
        wide += {letter, '\0'};
    Write(wide);
    EXPECT_EQ(Read("k", "v").bytes, "x\0"s);
    Write("\xEF\xBB\xBF" + text);
    EXPECT_EQ(Read("k", "v").bytes, "x\0"s);
}

TEST_F(Registry, LivesThroughEveryCutAndEveryFlippedByte) {
    const std::string whole = kHeader +
                              "[HKEY_LOCAL_MACHINE\\k]\n@=\"d\"\n\"v\"=hex(2):25,00,\\\n 00,00\n"
                              "\"w\"=dword:1 ; c\n[-HKEY_LOCAL_MACHINE\\j]\n";
    for (std::size_t at = 0; at < whole.size(); ++at) {
        Write(whole.substr(0, at));
        Read("k", "v");
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x5A);
        Write(flipped);
        Read("k", "v");
    }
    Write(whole);
    EXPECT_EQ(Read("k", "v").bytes, "%\0"s);
}

}  // namespace
