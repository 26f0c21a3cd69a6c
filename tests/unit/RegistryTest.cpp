#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "RegistryKey.h"
#include "analysis/RequirementChecks.h"
#include "wizard/InstallWizard.h"

namespace {
// A scratch key below HKCU\Software\TavRinTests, gone after every test.
class RegistryTest : public ::testing::Test {
protected:
    const std::string scratch = "Software\\TavRinTests\\Unit" + std::to_string(GetCurrentProcessId());
    void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, scratch.c_str()); }
    void TearDown() override
    {
        RegDeleteTreeA(HKEY_CURRENT_USER, scratch.c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\TavRinTests");  // only if nothing else is left
    }
    void setValue(const char* name, DWORD type, const void* data, DWORD size)
    {
        ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_CURRENT_USER, scratch.c_str(), name, type, data, size));
    }
    void setText(const char* name, const char* text) { setValue(name, REG_SZ, text, strlen(text) + 1); }
};
}  // namespace

TEST_F(RegistryTest, StackOpensBelowTheTopClosePopsDestructorClosesAll)
{
    setText("Present", "root value");
    HKEY scratchKey;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, scratch.c_str(), 0, KEY_ALL_ACCESS, &scratchKey));
    {
        CRegistryKey unopened(scratchKey);  // a root alone is not an open key
        EXPECT_TRUE(unopened.close());
        char text[16] = "keep";
        EXPECT_FALSE(unopened.readString("Present", text, sizeof text));
        EXPECT_STREQ("keep", text);
        EXPECT_FALSE(unopened.writeString("Stray", "x"));
    }
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegQueryValueExA(scratchKey, "Stray", nullptr, nullptr, nullptr, nullptr));
    RegCloseKey(scratchKey);

    HKEY opened[2];
    {
        CRegistryKey key(HKEY_CURRENT_USER);
        char text[32] = "";
        ASSERT_TRUE(key.open(scratch.c_str(), true, KEY_ALL_ACCESS));
        opened[0] = key.handle();
        ASSERT_TRUE(key.open("Inner", true, KEY_ALL_ACCESS));
        EXPECT_TRUE(key.writeString("Where", "inner"));
        EXPECT_FALSE(key.open("Missing", false, KEY_READ));
        EXPECT_TRUE(key.close());
        EXPECT_EQ(opened[0], key.handle());
        EXPECT_FALSE(key.readString("Where", text, sizeof text));  // the value is one level down
        EXPECT_TRUE(key.readString("Present", text, sizeof text));
        EXPECT_STREQ("root value", text);
        ASSERT_TRUE(key.open("Inner", false, KEY_READ));
        EXPECT_TRUE(key.readString("Where", text, sizeof text));
        EXPECT_STREQ("inner", text);
        opened[1] = key.handle();
    }
    for (HKEY h : opened)
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegQueryInfoKeyA(h, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(RegistryTest, ReadStringTerminatesValuesOfAnyType)
{
    const DWORD number = 0x00434241;  // "ABC" in memory order
    setValue("Binary", REG_BINARY, "abcdef", 6);
    setValue("Number", REG_DWORD, &number, sizeof number);
    setValue("Full", REG_BINARY, "12345678", 8);
    CRegistryKey key(HKEY_CURRENT_USER);
    ASSERT_TRUE(key.open(scratch.c_str(), false, KEY_READ));
    char text[16];
    memset(text, 'Z', sizeof text);
    ASSERT_TRUE(key.readString("Binary", text, sizeof text));
    EXPECT_STREQ("abcdef", text);
    ASSERT_TRUE(key.readString("Number", text, sizeof text));
    EXPECT_STREQ("ABC", text);
    ASSERT_TRUE(key.readString("Full", text, 8));
    EXPECT_STREQ("1234567", text);  // the last byte gives way to the zero
    EXPECT_EQ('Z', text[8]);
}

TEST_F(RegistryTest, ReadBoolFollowsTheFirstCharacter)
{
    const struct { const char* text; bool value; } cases[] = {
        {"", false}, {"0", false}, {"0true", false}, {"1", true}, {"10", true}, {"false", true}};
    CRegistryKey key(HKEY_CURRENT_USER);
    ASSERT_TRUE(key.open(scratch.c_str(), true, KEY_ALL_ACCESS));
    for (const auto& c : cases) {
        bool value = !c.value;
        EXPECT_TRUE(key.writeString("Flag", c.text) && key.readBool("Flag", value) && value == c.value) << c.text;
    }
    bool flag = true;
    EXPECT_FALSE(key.readBool("Missing", flag));
    EXPECT_TRUE(flag) << "a failed read must leave the value alone";
    EXPECT_TRUE(key.writeBool("Flag", false) && key.readBool("Flag", flag) && !flag);
    EXPECT_TRUE(key.writeBool("Flag", true) && key.readBool("Flag", flag) && flag);
}

TEST(RootKeyByName, WholeNamesWithoutRegardToCase)
{
    EXPECT_EQ(HKEY_PERFORMANCE_DATA, rootKeyByName("HKEY_performance_DATA"));
    for (const char* other : {"", "HKLM", "HKEY_LOCAL", "HKEY_LOCAL_MACHINE\\", "HKEY_USERS2"})
        EXPECT_EQ(nullptr, rootKeyByName(other)) << other;
}

namespace {
// A box shown on this thread is closed and counted: a failing entry ends the
// test as a failure instead of blocking it.
thread_local int boxesShown;
LRESULT CALLBACK closeBoxes(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && ++boxesShown) PostMessageA(reinterpret_cast<HWND>(wParam), WM_COMMAND, IDOK, 0);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace

// The entries that fail, and their boxes: tests/process/RequirementBoxTest.cpp.
TEST_F(RegistryTest, RequirementEntriesThatPassAlsoPassTogether)
{
    setText("Version", "5.00.2314.1003");
    setText("", "2, 0");
    CInstallWizard wizard(false);
    wizard.settings.title = "TavRin Personal";
    const std::string here = "HKEY_CURRENT_USER\\" + scratch;
    auto check = [](const std::string& keyPath, const char* value, const char* word, const char* bound) {
        return CRegistryCheck{"TavRin Engine", keyPath, value, word, bound, 0};
    };
    const CRegistryCheck passing[] = {
        check("", "Version", "VERGREATER", "9"),
        check("HKEY_NOWHERE\\" + scratch, "Version", "VERGREATER", "9"),
        check(here + "\\Missing", "Version", "VERGREATER", "9"),
        check(here, "NoSuchValue", "VERGREATER", "9"),
        check(here, "Version", "VERGREATER", "5.0.2314.1003"),  // the bound itself
        check(here, "Version", "VERGREATER", "5.0.2314.999"),
        check(here, "Version", "VERLESSER", "5.0.2314.1003"),
        check(here, "Version", "verlesser", "5.0.2315"),
        check(here, "Version", "VEREQUAL", "9"),  // other words pass
        check(here, "", "VERGREATER", "2.0.0.0"),  // the default value
        check("hkey_current_user\\" + scratch, "Version", "VerGreater", "4.99"),
    };
    boxesShown = 0;
    HHOOK hook = SetWindowsHookExA(WH_CBT, closeBoxes, nullptr, GetCurrentThreadId());
    ASSERT_NE(nullptr, hook);
    EXPECT_EQ(1, checkRequirements(&wizard));  // no entries
    for (const auto& c : passing) {
        EXPECT_EQ(1, checkRegistryEntry(nullptr, &wizard, c)) << c.keyPath << " " << c.comparison << " " << c.version;
        wizard.settings.registryChecks.push_back(c);
    }
    EXPECT_EQ(1, checkRequirements(&wizard));
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(0, boxesShown);
}
