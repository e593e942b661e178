#include "platform/registry.h"

#include "platform/common/reg_file.h"
#include "tests/platform/platform_test.h"

namespace {

using platform::RegFile;

TEST(ARegFile, HoldsEveryFormOfValueAndSkipsNoMoreThanADamagedLine) {
    const std::tuple<const char*, DWORD, std::string> forms[] = {
        {R"("v"="C:\\Tools\\\"new\"")", REG_SZ, "C:\\Tools\\\"new\"\0"s},
        {R"("V" = "mixed" ; a comment)", REG_SZ, "mixed\0"s},
        {R"("v"="ends in a slash\\")", REG_SZ, "ends in a slash\\\0"s},
        {"\"v\"=dword:0000002a", REG_DWORD, "\x2A\0\0\0"s},
        {"\"v\"=hex:01,ff, 2", REG_BINARY, "\x01\xFF\x02"s},
        {"\"v\"=hex(2):25,00,41,00,00,00", REG_EXPAND_SZ, "%A\0"s},
        {"\"v\"=hex(1):e5,00,3d,d8,00,de,00,d8,41", REG_SZ, "å😀\xEF\xBF\xBD\0"s},
        {"\"v\"=hex(b):01,\\\r\n  02,\\\r\n  03", 11, "\1\2\3"s},
        {"\"v\"=dword:1\n\"v\"=\"the last stands\"", REG_SZ, "the last stands\0"s}};
    for (const auto& [line, type, bytes] : forms) {
        const RegFile file = platform::ParseRegFile("[k]\n"s + line);
        const platform::RegValue* const value = file.FindValue("k", "v");
        ASSERT_TRUE(value) << line;
        EXPECT_TRUE(value->type == type && value->bytes == bytes) << line << value->bytes;
        EXPECT_TRUE(file.damagedLines.empty()) << line;
    }
    std::istringstream lines(R"("v"="no end|"v"="C:\|"v"="two" "texts"|"v|"v" "no sign"|"v"=|)"
                             R"("v"=dword:|"v"=dword:123456789|"v"=dword:x|"v"=hex:1,,2|)"
                             R"("v"=hex:100|"v"=hex(:00|"v"=hex(2)00|"v"=hex(x):00|v="bare name"|)"
                             R"(=|"v"=-1|"v"=qword:1|"v"=hex:01,-1|]|)"
                             "\x01\x02\xFF|@");
    for (std::string line; std::getline(lines, line, '|');) {
        const RegFile file = platform::ParseRegFile("[k]\n" + line + "\n\"after\"=\"there\"\n");
        EXPECT_EQ(file.damagedLines, std::vector{2}) << line;
        EXPECT_TRUE(file.FindValue("k", "after") && !file.FindValue("k", "v")) << line;
    }
}

TEST(ARegFile, IsAppliedInItsOrderWithoutCaseInEitherCoding) {
    const std::string text =
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "\"v\"=\"no key\"\r\n[a]\r\n\"v\"=\"1\"\r\n[b\r\n\"v\"=\"behind a damaged key\"\r\n[]\r\n"
        "\"v\"=\"3\"\r\n[Up\\C] ; end\r\n@=\"default\"\r\n[go]\r\n@=\"8\"\r\n[go\\b]\r\n"
        "[gob]\r\n\"w\"=\"7\"\r\n\"v\"=\"6\"\r\n\"V\"=-\r\n[-GO]\r\n\"v\"=\"nowhere\"";
    std::string wide = "\xFF\xFE";
    for (const char letter : text)
        wide += {letter, '\0'};
    for (const std::string& bytes : {text, "\xEF\xBB\xBF" + text, wide}) {
        const RegFile file = platform::ParseRegFile(bytes);
        std::string told;
        for (const auto& [path, values] : file.keys) {
            told += path + ' ';
            for (const auto& [name, value] : values)
                told += name + '=' + value.bytes.c_str() + ' ';
        }
        EXPECT_EQ(told, "a v=1 gob w=7 up\\c =default ");
        EXPECT_EQ(file.damagedLines, (std::vector{3, 6, 7, 8, 9, 20}));
        EXPECT_TRUE(file.HasKey("up") && !file.HasKey("u"));
    }
}

HKEY Open(HKEY above, const std::string& path, LSTATUS expected = ERROR_SUCCESS) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(above, path.c_str(), 0, KEY_READ, &key), expected) << path;
    EXPECT_EQ(key == nullptr, expected != ERROR_SUCCESS) << path;
    return key;
}

std::string ValueOf(const std::string& path, const char* name) {
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key);
    std::array<char, 64> text{};
    DWORD size = text.size();
    const LSTATUS status =
        RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? text.data() : "none";
}

TEST(TheRegistry, ShowsATextThatIsLaidOverItWhateverItHolds) {
    const TemporaryFolder folder;
    const std::string content = "[HKEY_LOCAL_MACHINE\\Up\\k]\n\"v\"=\"file\"\n\"w\"=\"beside\"\n";
    platform::UseRegistryFile(folder.Write("reg", content));
    platform::LayOverRegistry(platform::RegistryText{"HKEY_LOCAL_MACHINE\\up\\K", "V", "first"});
    EXPECT_EQ(ValueOf("Up\\k", "v") + ValueOf("Up\\k", "w"), "firstbeside");
    platform::LayOverRegistry(platform::RegistryText{"HKEY_LOCAL_MACHINE\\New\\k", "v", ""});
    EXPECT_EQ(ValueOf("Up\\k", "v") + ValueOf("New\\k", "v"), "file");
    platform::UseRegistryFile(folder.Write("other", ""));
    EXPECT_EQ(ValueOf("New\\k", "v") + ValueOf("Up\\k", "v"), "none");
    platform::LayOverRegistry(std::nullopt);
    EXPECT_EQ(ValueOf("New\\k", "v"), "none");
}

TEST(TheRegistry, WritesNoMoreThanTheBufferHoldsAndNothingThroughHandlesOfNoKey) {
    const TemporaryFolder folder;
    platform::UseRegistryFile(folder.Write("reg", "[HKEY_LOCAL_MACHINE\\Up\\k]\n@=\"four\"\n"));
    const HKEY up = Open(HKEY_LOCAL_MACHINE, "uP\\");
    const HKEY key = Open(up, "K");
    RegCloseKey(up);
    std::string buffer(8, '#');
    auto* const data = reinterpret_cast<BYTE*>(buffer.data());
    for (DWORD room = 0; room < 6; ++room) {
        DWORD size = room;
        EXPECT_EQ(RegQueryValueExA(key, nullptr, nullptr, nullptr, room ? data : nullptr, &size),
                  room == 0 || room > 4 ? ERROR_SUCCESS : ERROR_MORE_DATA);
        EXPECT_EQ(size, 5U);
        EXPECT_EQ(buffer, room > 4 ? "four\0###"s : "########");
    }
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    for (const HKEY bad : {key, HKEY{}, MadeUp<HKEY>()}) {
        Open(bad, "k", ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegQueryValueExA(bad, "", nullptr, nullptr, nullptr, nullptr),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegCloseKey(bad), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(platform::CountOpenKeys(), 0U);
}

TEST(TheRegistry, IsTheFileAsItIsWhenAKeyIsOpened) {
    const TemporaryFolder folder;
    const std::string file = folder.File("reg");
    platform::UseRegistryFile(file);
    testing::internal::CaptureStderr();
    for (const std::string key : {"a", "b"}) {
        folder.Write("reg", "[HKEY_LOCAL_MACHINE\\" + key + "]\n=\n");
        RegCloseKey(Open(HKEY_LOCAL_MACHINE, key));
        Open(HKEY_LOCAL_MACHINE, "c", ERROR_FILE_NOT_FOUND);
        Open(HKEY_CURRENT_USER, key, ERROR_FILE_NOT_FOUND);
    }
    for (const char* const none : {"/nowhere/reg", "/", "/dev/zero"}) {
        platform::UseRegistryFile(none);
        Open(HKEY_LOCAL_MACHINE, "b", ERROR_FILE_NOT_FOUND);
    }
    const std::string damage = file + ":2: not a line of a registry file, skipped\n";
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(
        told.starts_with(damage + damage + "/nowhere/reg: the registry file cannot be read\n"))
        << told;
}

}  // namespace
