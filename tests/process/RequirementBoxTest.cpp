// A failing prerequisite shows its "Incorrect Version" box. The box is modal
// on this thread, so a second thread of the test answers it.
#include <gtest/gtest.h>

#include <vector>

#include "SetupProcess.h"
#include "TestThread.h"
#include "analysis/RequirementChecks.h"
#include "wizard/InstallWizard.h"

namespace {
// Answers every box that comes up, until none has come for a second.
struct BoxAnswerer {
    std::vector<std::string> texts;
    CTestThread thread{[this] {
        uidriver::WindowQuery query{"Incorrect Version", GetCurrentProcessId()};
        for (DWORD wait = 10000; HWND box = uidriver::waitForWindow(query, wait); wait = 1000) {
            texts.push_back(uidriver::messageText(box));
            uidriver::pressButton(box, IDOK);
            uidriver::waitForWindowGone(query, 5000);
        }
    }};
    std::vector<std::string> join()
    {
        thread.join();
        return texts;
    }
};

// A name with a percent sign is no format.
CRegistryCheck check(const char* comparison, const char* bound)
{
    return {"Internet %s Explorer", "HKEY_CURRENT_USER\\Software\\TavRinTests\\Browser", "Version", comparison, bound};
}

void setInstalledVersion(const char* version)
{
    RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\TavRinTests\\Browser", "Version", REG_SZ, version,
                    lstrlenA(version) + 1);
}
}  // namespace

TEST(RequirementBox, TooOldAndTooNewTellTheBounds)
{
    CInstallWizard wizard(false);
    wizard.settings.title = "TavRin Personal";

    setInstalledVersion("5.00.2314");
    BoxAnswerer old;
    EXPECT_EQ(checkRegistryEntry(nullptr, &wizard, check("vergreater", "5.00.2314.1003")), 0);
    EXPECT_EQ(old.join(),
              std::vector<std::string>{"Your version of Internet %s Explorer is unsupported by TavRin Personal.\n"
                                       "Please upgrade your Internet %s Explorer to 5.00.2314.1003 or higher."});

    // A bound met exactly passes either way; one box: the check behind the failing one is never made.
    setInstalledVersion("6");
    wizard.settings.registryChecks = {check("VERGREATER", "6.0"), check("VERLESSER", "6"),
                                      check("VERLESSER", "5.00.2314.1003"), check("VERGREATER", "99")};
    BoxAnswerer tooNew;
    EXPECT_EQ(checkRequirements(&wizard), 0);
    EXPECT_EQ(tooNew.join(),
              std::vector<std::string>{"The version of Internet %s Explorer is unsupported by TavRin Personal. "
                                       "The latest version of Internet %s Explorer supported by TavRin Personal "
                                       "is 5.00.2314.1003."});
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\TavRinTests\\Browser");
}
