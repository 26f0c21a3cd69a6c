// The partner cookie through Wine's real cookie store. A cookie set here
// without an expiry lives in this process only, so what a later process reads
// is what the run stored, with an expiry the store took.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"
#include "wizard/InstallWizard.h"

namespace {
// setPartnerCookie of a run whose description names `host`; `partnerA` 0 is a plain copy.
void runOn(const std::string& host, int partnerA, int partnerB)
{
    CInstallWizard wizard(false);
    wizard.settings.serverRoot = host;
    wizard.branding.present = partnerA != 0;
    wizard.branding.partnerIdA = partnerA;
    wizard.branding.partnerIdB = partnerB;
    EXPECT_EQ(1, wizard.setPartnerCookie());
}

std::string storedLater(const std::string& host)
{
    return runSelf("--read-cookie " + host + "/ TavRinPartner");
}
}  // namespace

TEST(PartnerCookie, ACookieThereWinsOverTheTrailer)
{
    const struct {
        const char* host;
        const char* before;  // in this process only; null for none
        const char* after;
    } cases[] = {
        {"http://wins.partner.test", "TavRinPartner=Partner*7*8*9*10", "TavRinPartner=Partner*7*8*9*10"},
        {"http://half.partner.test", "TavRinPartner=Partner*0*8", "TavRinPartner=Partner*1*8*0*0"},
        {"http://sign.partner.test", "TavRinPartner=Partner*-5*x", "TavRinPartner=Partner*-5*2*0*0"},
        {"http://none.partner.test", nullptr, "TavRinPartner=Partner*1*2*0*0"},
    };
    for (const auto& c : cases) {
        if (c.before) {
            ASSERT_TRUE(storeCookie(c.host, c.before));
        }
        runOn(c.host, 1, 2);
        EXPECT_EQ(c.after, storedLater(c.host)) << c.host;
    }
}

TEST(PartnerCookie, APlainCopyLeavesTheCookieAlone)
{
    SYSTEMTIME tomorrow;
    GetSystemTime(&tomorrow);
    addSeconds(tomorrow, 86400);
    char date[64];
    formatCookieDate(tomorrow, date, sizeof date);
    const std::string host = "http://plain.partner.test";
    ASSERT_TRUE(storeCookie(host.c_str(), (std::string("TavRinPartner=Partner*0*8; expires=") + date).c_str()));
    runOn(host, 0, 0);
    EXPECT_EQ("TavRinPartner=Partner*0*8", storedLater(host));

    runOn("http://nothing.partner.test", 0, 0);
    DWORD exitCode = 0;
    EXPECT_EQ("", runSelf("--read-cookie http://nothing.partner.test/ TavRinPartner", &exitCode));
    EXPECT_EQ(1u, exitCode) << "a plain copy writes no cookie";
}
