// The account form on the wire, byte for byte, and the time zone it carries.
#include <gtest/gtest.h>

#include <string>
#include <utility>

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

// The two keys the machine decides.
std::string machineTail() { return "&MID=" + machineIdentity() + "&TimeZone=" + currentTimeZone(); }
}  // namespace

TEST(FormBody, DefaultsPersonalAndBusinessRecords)
{
    AccountDetails blank;
    size_t length = blank.formLength();  // builds when empty
    EXPECT_EQ(length, blank.formBody.size());
    EXPECT_EQ("Command=add&CommandAction=&Email=&FirstName=&Gender=&LastName=&Industry=0"
              "&NewServices=N&Occupation=0&Password=&RepeatPassword=&PasswordHint=&UserCode="
              "&Zip=&Country=0&AgeRange=0&Phone=&company_name=&number_of_employees=0"
              "&company_type=&JobTitle=&website=" + machineTail(), blank.formBody);

    AccountDetails person;
    person.Command = "cu", person.CommandAction = "Add", person.Email = "ann.lee@example.com";
    person.FirstName = "Ann", person.LastName = "O'Lee Smith", person.Gender = "F";
    person.Industry = 3, person.NewServices = 1, person.Occupation = 12, person.Country = 2, person.AgeRange = 23;
    person.Password = person.RepeatPassword = "p+ss w&rd";
    person.PasswordHint = "the usual?", person.UserCode = "ann_lee", person.Zip = "90210";
    person.buildForm();
    EXPECT_EQ("Command=cu&CommandAction=Add&Email=ann.lee@example.com&FirstName=Ann&Gender=F"
              "&LastName=O'Lee+Smith&Industry=3&NewServices=Y&Occupation=12&Password=p+ss+w%26rd"
              "&RepeatPassword=p+ss+w%26rd&PasswordHint=the+usual%3f&UserCode=ann_lee&Zip=90210"
              "&Country=2&AgeRange=23&Phone=&company_name=&number_of_employees=0&company_type="
              "&JobTitle=&website=" + machineTail(), person.formBody);

    AccountDetails firm;
    firm.Command = firm.CommandAction = "AddTrial";
    firm.Email = "boss@smith.example", firm.FirstName = "Bo", firm.LastName = "Smith";
    firm.Country = -1;  // a negative number keeps its sign
    firm.Password = firm.RepeatPassword = "x";
    firm.PasswordHint = "h", firm.UserCode = "smith", firm.Zip = "N1 9GU";
    firm.Phone = "+1 (555) 010-9999", firm.company_name = "Smith & Sons, Inc.", firm.number_of_employees = 20;
    firm.company_type = "Small Business", firm.JobTitle = "CEO/Owner", firm.website = "http://smith.example/~home?a=1";
    firm.buildForm();
    firm.buildForm();  // anew, not appended
    EXPECT_EQ("Command=AddTrial&CommandAction=AddTrial&Email=boss@smith.example&FirstName=Bo"
              "&Gender=&LastName=Smith&Industry=0&NewServices=N&Occupation=0&Password=x"
              "&RepeatPassword=x&PasswordHint=h&UserCode=smith&Zip=N1+9GU&Country=-1&AgeRange=0"
              "&Phone=+1+(555)+010-9999&company_name=Smith+%26+Sons,+Inc.&number_of_employees=20"
              "&company_type=Small+Business&JobTitle=CEO/Owner"
              "&website=http://smith.example/%7ehome%3fa=1" + machineTail(), firm.formBody);
}

TEST(FormBody, EscapingByByte)
{
    EXPECT_EQ("a%26b=c+d", escaped("a&b=c d"));
    EXPECT_EQ("%0a%7f%e9%01%1f%ff%80", escaped("\x0a\x7f\xe9\x01\x1f\xff\x80"));
    EXPECT_EQ("%3c%3e%22%23%25%7b%7d%7c%5c%5e%7e%5b%5d%60%26%3f", escaped("<>\"#%{}|\\^~[]`&?"));
    EXPECT_EQ("+=/:;@,$'()!*-_.", escaped("+=/:;@,$'()!*-_."));
    // 185 escaped bytes fill 555 exactly; more is cut, also inside a group.
    EXPECT_EQ(555u, escaped(std::string(185, '\xe9')).size());
    EXPECT_EQ(escaped(std::string(185, '\xe9')), escaped(std::string(186, '\xe9')));
    EXPECT_EQ("x%3", escaped(std::string(184, '<') + "x<").substr(552));
}

TEST(TimeZone, TableEdges)
{
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_UNKNOWN, 0));  // whatever the bias
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_INVALID, 300));
    EXPECT_STREQ("EST", timeZoneName(TIME_ZONE_ID_DAYLIGHT, 300));
    // Minutes west: under half an hour, -11.5 half hours truncated to -11, the first and last rows, a
    // half-hour row, and biases without a row.
    const std::pair<LONG, const char*> rows[] = {{29, "GMT"},  {-330, "IST"}, {-345, "IST"}, {-660, "SST"},
                                                 {720, "NST"}, {210, "AGT"},  {-720, "PST"}, {480, "PST"},
                                                 {120, "PST"}, {45, "PST"}};
    for (const auto& r : rows) EXPECT_STREQ(r.second, timeZoneName(TIME_ZONE_ID_STANDARD, r.first)) << r.first;
}
