// The account form as it goes on the wire, byte for byte, and the pieces it is
// made of: the escaping, the time zone and the machine identity.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "TestSupport.h"
#include "account/AccountDetails.h"
#include "account/FormEncoding.h"
#include "account/MachineIdentity.h"

namespace {
std::string escaped(const std::string& value, size_t limit = 555)
{
    std::string out;
    urlEscape(value.c_str(), out, limit);
    return out;
}

// The two keys the machine decides, as buildForm must write them.
std::string machineTail() { return "&MID=" + machineIdentity() + "&TimeZone=" + currentTimeZone(); }
}  // namespace

TEST(FormBody, DefaultsGiveAll24KeysInOrder)
{
    AccountDetails details;
    EXPECT_EQ(details.formLength(), details.formBody.size());  // builds when empty
    EXPECT_EQ("Command=add&CommandAction=&Email=&FirstName=&Gender=&LastName=&Industry=0"
              "&NewServices=N&Occupation=0&Password=&RepeatPassword=&PasswordHint=&UserCode="
              "&Zip=&Country=0&AgeRange=0&Phone=&company_name=&number_of_employees=0"
              "&company_type=&JobTitle=&website=" + machineTail(),
              details.formBody);
}

TEST(FormBody, PersonalAndBusinessRecords)
{
    AccountDetails person;
    person.Command = "cu";
    person.CommandAction = "Add";
    person.Email = "ann.lee@example.com";
    person.FirstName = "Ann";
    person.Gender = "F";
    person.LastName = "O'Lee Smith";
    person.Industry = 3;
    person.NewServices = 1;
    person.Occupation = 12;
    person.Password = person.RepeatPassword = "p+ss w&rd";
    person.PasswordHint = "the usual?";
    person.UserCode = "ann_lee";
    person.Zip = "90210";
    person.Country = 2;
    person.AgeRange = 23;
    person.buildForm();
    EXPECT_EQ("Command=cu&CommandAction=Add&Email=ann.lee@example.com&FirstName=Ann&Gender=F"
              "&LastName=O'Lee+Smith&Industry=3&NewServices=Y&Occupation=12&Password=p+ss+w%26rd"
              "&RepeatPassword=p+ss+w%26rd&PasswordHint=the+usual%3f&UserCode=ann_lee&Zip=90210"
              "&Country=2&AgeRange=23&Phone=&company_name=&number_of_employees=0&company_type="
              "&JobTitle=&website=" + machineTail(),
              person.formBody);

    AccountDetails firm;
    firm.Command = firm.CommandAction = "AddTrial";
    firm.Email = "boss@smith.example";
    firm.FirstName = "Bo";
    firm.LastName = "Smith";
    firm.Country = -1;  // a negative number keeps its sign
    firm.Password = firm.RepeatPassword = "x";
    firm.PasswordHint = "h";
    firm.UserCode = "smith";
    firm.Zip = "N1 9GU";
    firm.Phone = "+1 (555) 010-9999";
    firm.company_name = "Smith & Sons, Inc.";
    firm.number_of_employees = 20;
    firm.company_type = "Small Business";
    firm.JobTitle = "CEO/Owner";
    firm.website = "http://smith.example/~home?a=1";
    firm.buildForm();
    EXPECT_EQ("Command=AddTrial&CommandAction=AddTrial&Email=boss@smith.example&FirstName=Bo"
              "&Gender=&LastName=Smith&Industry=0&NewServices=N&Occupation=0&Password=x"
              "&RepeatPassword=x&PasswordHint=h&UserCode=smith&Zip=N1+9GU&Country=-1&AgeRange=0"
              "&Phone=+1+(555)+010-9999&company_name=Smith+%26+Sons,+Inc.&number_of_employees=20"
              "&company_type=Small+Business&JobTitle=CEO/Owner"
              "&website=http://smith.example/%7ehome%3fa=1" + machineTail(),
              firm.formBody);
    // A second build starts afresh rather than appending.
    firm.buildForm();
    EXPECT_EQ(0u, firm.formBody.find("Command=AddTrial&"));
    EXPECT_EQ(std::string::npos, firm.formBody.find("&Command="));
}

TEST(FormBody, EscapingByByte)
{
    EXPECT_EQ("a%26b=c+d", escaped("a&b=c d"));
    EXPECT_EQ("%0a%7f%e9%01%1f", escaped("\x0a\x7f\xe9\x01\x1f"));
    EXPECT_EQ("%3c%3e%22%23%25%7b%7d%7c%5c%5e%7e%5b%5d%60%26%3f", escaped("<>\"#%{}|\\^~[]`&?"));
    EXPECT_EQ("+=/:;@,$'()!*-_.", escaped("+=/:;@,$'()!*-_."));
    EXPECT_EQ("%ff%80", escaped("\xff\x80"));

    // 185 escaped bytes fill 555 exactly; more are cut, also inside a group.
    EXPECT_EQ(555u, escaped(std::string(185, '\xe9')).size());
    EXPECT_EQ(escaped(std::string(185, '\xe9')), escaped(std::string(186, '\xe9')));
    std::string cut = escaped(std::string(184, '<') + "x<");
    EXPECT_EQ(555u, cut.size());
    EXPECT_EQ("x%3", cut.substr(552));
    EXPECT_EQ("%3", escaped("<", 2));

    // The form cuts each value at 555, never the key.
    AccountDetails details;
    details.UserCode = std::string(300, '"');
    details.buildForm();
    EXPECT_NE(std::string::npos, details.formBody.find("&UserCode=" + escaped(std::string(185, '"')) + "&Zip="));
}

TEST(TimeZone, TableEdges)
{
    const DWORD known = TIME_ZONE_ID_STANDARD;
    EXPECT_STREQ("GMT", timeZoneName(known, 0));
    EXPECT_STREQ("GMT", timeZoneName(known, 29));  // under half an hour
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_UNKNOWN, 0));
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_UNKNOWN, 300));
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_INVALID, 300));
    EXPECT_STREQ("EST", timeZoneName(TIME_ZONE_ID_DAYLIGHT, 300));
    EXPECT_STREQ("IST", timeZoneName(known, -330));
    EXPECT_STREQ("IST", timeZoneName(known, -345));  // -11.5 half hours truncate to -11
    EXPECT_STREQ("ACT", timeZoneName(known, -570));
    EXPECT_STREQ("AGT", timeZoneName(known, 210));
    EXPECT_STREQ("NST", timeZoneName(known, 720));
    EXPECT_STREQ("PST", timeZoneName(known, -720));
    EXPECT_STREQ("PST", timeZoneName(known, 480));  // 8 has no row of its own
    EXPECT_STREQ("PST", timeZoneName(known, 120));
    EXPECT_STREQ("PST", timeZoneName(known, 45));  // 1.5 half hours is no row
    EXPECT_STREQ("SST", timeZoneName(known, -660));
    EXPECT_STREQ("MIT", timeZoneName(known, 660));
}

TEST(TimeZone, FollowsTheProcessZone)
{
    // Wine reads TZ once per process: each zone needs a process of its own.
    EXPECT_EQ("PST", runSelf("--time-zone", {"TZ=UTC"}));  // zone unknown to Windows
    EXPECT_EQ("EST", runSelf("--time-zone", {"TZ=America/New_York"}));
    EXPECT_EQ("IST", runSelf("--time-zone", {"TZ=Asia/Kolkata"}));
}

TEST(MachineIdentity, AdapterAndVolumeForms)
{
    ADAPTER_STATUS status = {};
    status.adapter_type = 0xFE;
    const UCHAR address[6] = {0x00, 0x1a, 0x2b, 0xc3, 0xd4, 0xe5};
    memcpy(status.adapter_address, address, 6);
    EXPECT_EQ("MA001a2bc3d4e5", adapterForm(status));
    status.adapter_type = 0xFF;  // token ring
    EXPECT_EQ("", adapterForm(status));
    status.adapter_type = 0xFE;
    memcpy(status.adapter_address, "DEST\0\0", 6);
    EXPECT_EQ("", adapterForm(status));
    EXPECT_EQ("VS-1", volumeForm(0xFFFFFFFF));
    EXPECT_EQ("VS1124073472", volumeForm(0x43000000));

    std::string identity = machineIdentity();
    EXPECT_TRUE(std::regex_match(identity, std::regex("MA[0-9a-f]{12}|VS-?[0-9]+"))) << identity;
    EXPECT_EQ(identity, machineIdentity());
    EXPECT_EQ(volumeForm(0x43000000), volumeIdentity());  // Wine's drive C
}
