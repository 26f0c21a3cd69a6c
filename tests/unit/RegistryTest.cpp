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

TEST_F(RegistryTest, OpensBelowTheCurrentKeyAndClosePops)
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

    CRegistryKey key(HKEY_CURRENT_USER);
    char text[32] = "";
    ASSERT_TRUE(key.open(scratch.c_str(), true, KEY_ALL_ACCESS));
    HKEY outer = key.handle();
    ASSERT_TRUE(key.open("Inner", true, KEY_ALL_ACCESS));
    EXPECT_TRUE(key.writeString("Where", "inner"));
    EXPECT_FALSE(key.open("Missing", false, KEY_READ));
    EXPECT_TRUE(key.close());
    EXPECT_EQ(outer, key.handle());
    EXPECT_EQ(1, key.openCount());
    EXPECT_FALSE(key.readString("Where", text, sizeof text));  // the value is one level down
    EXPECT_TRUE(key.readString("Present", text, sizeof text));
    EXPECT_STREQ("root value", text);
    ASSERT_TRUE(key.open("Inner", false, KEY_READ));
    EXPECT_TRUE(key.readString("Where", text, sizeof text));
    EXPECT_STREQ("inner", text);
}

TEST_F(RegistryTest, HoldsFiftyKeysAndDestructorClosesThemAll)
{
    HKEY handles[50];
    {
        CRegistryKey key(HKEY_CURRENT_USER);
        for (int i = 0; i < 50; ++i) {
            ASSERT_TRUE(key.open(i ? "k" : scratch.c_str(), true, KEY_ALL_ACCESS)) << i;
            handles[i] = key.handle();
        }
        EXPECT_FALSE(key.open("k", true, KEY_ALL_ACCESS));
        EXPECT_EQ(50, key.openCount());
        EXPECT_EQ(handles[49], key.handle());
    }
    for (HKEY h : handles)
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
    memset(text, 'Z', sizeof text);
    ASSERT_TRUE(key.readString("Full", text, 8));
    EXPECT_STREQ("1234567", text);  // the last byte gives way to the zero
    EXPECT_EQ('Z', text[8]);
}

TEST_F(RegistryTest, ReadBoolFollowsTheFirstCharacter)
{
    const struct { const char* name; const char* text; bool value; } cases[] = {
        {"Empty", "", false}, {"0", "0", false}, {"0true", "0true", false}, {"00", "00", false},
        {"1", "1", true},     {"10", "10", true}, {"true", "true", true},    {"false", "false", true}};
    for (const auto& c : cases) setText(c.name, c.text);
    CRegistryKey key(HKEY_CURRENT_USER);
    ASSERT_TRUE(key.open(scratch.c_str(), false, KEY_ALL_ACCESS));
    for (const auto& c : cases) {
        bool value = !c.value;
        EXPECT_TRUE(key.readBool(c.name, value) && value == c.value) << "'" << c.text << "'";
        EXPECT_FALSE(key.readBool("Missing", value));
        EXPECT_EQ(c.value, value) << "a failed read must leave the value alone";
    }
    bool flag = false;
    EXPECT_TRUE(key.writeBool("Flag", true) && key.readBool("Flag", flag) && flag);
    EXPECT_TRUE(key.writeBool("Flag", false) && key.readBool("Flag", flag) && !flag);
}

TEST(RootKeyByName, SixNamesWithoutRegardToCase)
{
    EXPECT_EQ(HKEY_CLASSES_ROOT, rootKeyByName("HKEY_CLASSES_ROOT"));
    EXPECT_EQ(HKEY_CURRENT_USER, rootKeyByName("hkey_current_user"));
    EXPECT_EQ(HKEY_LOCAL_MACHINE, rootKeyByName("Hkey_Local_Machine"));
    EXPECT_EQ(HKEY_USERS, rootKeyByName("HKEY_USERS"));
    EXPECT_EQ(HKEY_PERFORMANCE_DATA, rootKeyByName("HKEY_performance_DATA"));
    EXPECT_EQ(HKEY_CURRENT_CONFIG, rootKeyByName("HKEY_CURRENT_CONFIG"));
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

class RequirementTest : public RegistryTest {
protected:
    CInstallWizard wizard{false};
    HHOOK hook = nullptr;
    const std::string here = "HKEY_CURRENT_USER\\" + scratch;
    void SetUp() override
    {
        RegistryTest::SetUp();
        wizard.settings.title = "TavRin Personal";
        setText("Version", "5.00.2314.1003");
        setText("", "2, 0");
        boxesShown = 0;
        hook = SetWindowsHookExA(WH_CBT, closeBoxes, nullptr, GetCurrentThreadId());
        ASSERT_NE(nullptr, hook);
    }
    void TearDown() override
    {
        UnhookWindowsHookEx(hook);
        EXPECT_EQ(0, boxesShown);
        RegistryTest::TearDown();
    }
    static CRegistryCheck check(const std::string& keyPath, const char* value, const char* word, const char* bound)
    {
        return {"TavRin Engine", keyPath, value, word, bound, 0};
    }
};
}  // namespace

TEST_F(RequirementTest, EntriesThatPassAlsoPassTogether)
{
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
    EXPECT_EQ(1, checkRequirements(&wizard));  // no entries
    for (const auto& c : passing) {
        EXPECT_EQ(1, checkRegistryEntry(nullptr, &wizard, c)) << c.keyPath << " " << c.comparison << " " << c.version;
        wizard.settings.registryChecks.push_back(c);
    }
    EXPECT_EQ(1, checkRequirements(&wizard));
}
