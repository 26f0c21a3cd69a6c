// A failing prerequisite shows its "Incorrect Version" box. The box is modal
// on this thread, so a second thread of the test answers it.
#include <gtest/gtest.h>

#include "TestThread.h"
#include <vector>

#include "SetupProcess.h"
#include "analysis/RequirementChecks.h"
#include "wizard/InstallWizard.h"

namespace {
// Answers every box that comes up, until none has come for a second.
struct BoxAnswerer {
    std::vector<std::string> texts;
    CTestThread thread;
    BoxAnswerer()
        : thread([this] {
              uidriver::WindowQuery query;
              query.caption = "Incorrect Version";
              query.processId = GetCurrentProcessId();
              DWORD wait = 10000;
              while (HWND box = uidriver::waitForWindow(query, wait)) {
                  texts.push_back(uidriver::messageText(box));
                  uidriver::pressButton(box, IDOK);
                  uidriver::waitForWindowGone(query, 5000);
                  wait = 1000;
              }
          })
    {
    }
    std::vector<std::string> join()
    {
        thread.join();
        return texts;
    }
};

void setInstalledVersion(const char* version)
{
    HKEY key;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\TavRinTests\\Browser", 0, nullptr, 0, KEY_ALL_ACCESS,
                    nullptr, &key, nullptr);
    RegSetValueExA(key, "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(version),
                   static_cast<DWORD>(strlen(version) + 1));
    RegCloseKey(key);
}

CRegistryCheck check(const char* comparison, const char* bound)
{
    CRegistryCheck entry;
    entry.name = "Internet %s Explorer";  // a name with a percent sign is no format
    entry.keyPath = "HKEY_CURRENT_USER\\Software\\TavRinTests\\Browser";
    entry.valueName = "Version";
    entry.comparison = comparison;
    entry.version = bound;
    return entry;
}
}  // namespace

TEST(RequirementBox, TooOldAndTooNewTellTheBounds)
{
    CInstallWizard wizard(false);
    wizard.settings.title = "TavRin Personal";

    setInstalledVersion("5.00.2314");
    BoxAnswerer old;
    EXPECT_EQ(checkRegistryEntry(nullptr, &wizard, check("vergreater", "5.00.2314.1003")), 0);
    EXPECT_EQ(old.join(), std::vector<std::string>{"Your version of Internet %s Explorer is unsupported by TavRin Personal.\n"
                          "Please upgrade your Internet %s Explorer to 5.00.2314.1003 or higher."});

    setInstalledVersion("6");
    wizard.settings.registryChecks = {check("VERGREATER", "5.00.2314.1003"),
                                      check("VERLESSER", "5.00.2314.1003"),
                                      check("VERGREATER", "99")};
    BoxAnswerer tooNew;
    EXPECT_EQ(checkRequirements(&wizard), 0);
    // One box: the check behind the failing one is never made.
    EXPECT_EQ(tooNew.join(), std::vector<std::string>{"The version of Internet %s Explorer is unsupported by TavRin Personal. "
                             "The latest version of Internet %s Explorer supported by TavRin Personal "
                             "is 5.00.2314.1003."});
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\TavRinTests\\Browser");
}
