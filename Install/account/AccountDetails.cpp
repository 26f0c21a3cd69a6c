#include "account/AccountDetails.h"

#include <cstdio>

#include "BoundedText.h"
#include "account/FormEncoding.h"
#include "account/MachineIdentity.h"

namespace {
const size_t valueLimit = 555;
}

void AccountDetails::addField(const char* name, const char* value)
{
    if (!formBody.empty()) formBody += '&';
    formBody += name;  // key names are never escaped
    formBody += '=';
    std::string escaped;
    urlEscape(value, escaped, valueLimit);
    formBody += escaped;
}

void AccountDetails::addNumber(const char* name, int value)
{
    char text[16];
    formatText(text, sizeof text, "%d", value);
    addField(name, text);
}

void AccountDetails::buildForm()
{
    formBody.clear();
    addField("Command", Command.c_str());
    addField("CommandAction", CommandAction.c_str());
    addField("Email", Email.c_str());
    addField("FirstName", FirstName.c_str());
    addField("Gender", Gender.c_str());
    addField("LastName", LastName.c_str());
    addNumber("Industry", Industry);
    addField("NewServices", NewServices ? "Y" : "N");
    addNumber("Occupation", Occupation);
    addField("Password", Password.c_str());
    addField("RepeatPassword", RepeatPassword.c_str());
    addField("PasswordHint", PasswordHint.c_str());
    addField("UserCode", UserCode.c_str());
    addField("Zip", Zip.c_str());
    addNumber("Country", Country);
    addNumber("AgeRange", AgeRange);
    addField("Phone", Phone.c_str());
    addField("company_name", company_name.c_str());
    addNumber("number_of_employees", number_of_employees);
    addField("company_type", company_type.c_str());
    addField("JobTitle", JobTitle.c_str());
    addField("website", website.c_str());
    addField("MID", machineIdentity().c_str());
    addField("TimeZone", currentTimeZone());
}

size_t AccountDetails::formLength()
{
    if (formBody.empty()) buildForm();
    return formBody.size();
}
