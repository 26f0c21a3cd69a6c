#include "account/AccountDetails.h"

#include <cstring>

#include "BoundedText.h"

namespace {
void complain(std::string& errorText, const char* line)
{
    errorText += line;
    errorText += "\r\n";
}

// Bytes no address may hold; the list has always carried its repeats.
const char forbiddenInEmail[] = {' ', ',', ';', '/', '\\', '\'', '"', ' ', '\''};
}  // namespace

bool AccountDetails::isEmailValid() const
{
    if (Email.empty()) return false;
    size_t at = Email.find('@');
    if (at == std::string::npos || at == 0 || at == Email.size() - 1) return false;
    if (Email[at + 1] == '.') return false;
    for (char c : Email)
        if (memchr(forbiddenInEmail, c, sizeof forbiddenInEmail)) return false;
    size_t point = Email.find('.', at);
    return point != std::string::npos && point != Email.size() - 1;
}

bool AccountDetails::isPasswordValid() const { return Password.size() >= 4 && Password == RepeatPassword; }

bool AccountDetails::checkLoginFields()
{
    errorText.clear();
    if (UserCode.empty()) complain(errorText, "Please provide a username for logging into your TavRin account");
    if (Password.empty()) complain(errorText, "Please provide a password for logging into your TavRin account");
    if (RepeatPassword.empty()) complain(errorText, "Please repeat your password for verification");
    if (PasswordHint.empty()) complain(errorText, "Please provide a hint for remembering your password");
    if (Email.empty()) complain(errorText, "Please provide an email address");
    if (!RepeatPassword.empty() && Password != RepeatPassword)
        complain(errorText, "Your repeat password does not match your password");
    if (!Email.empty() && !isEmailValid())
        complain(errorText, "The email address entered is not valid, please try again");
    if (!Password.empty() && Password.size() < 4) complain(errorText, "Your password must be a least 4 characters");
    return errorText.empty();
}

bool AccountDetails::checkDetailFields(const char* regoCommand)
{
    errorText.clear();
    if (equalsNoCase(regoCommand, "AddTrial")) {
        if (FirstName.empty()) complain(errorText, "Please enter your first name");
        if (LastName.empty()) complain(errorText, "Please enter your last name");
        if (company_name.empty()) complain(errorText, "Please enter your company name");
        if (JobTitle.empty()) complain(errorText, "Please enter your title");
        if (company_type.empty()) complain(errorText, "Please select your company type");
        if (number_of_employees == 0) complain(errorText, "Please select employee count");
        if (website.empty()) complain(errorText, "Please enter your website");
        if (Country == 0) complain(errorText, "Please select your country");
        if (Phone.empty()) complain(errorText, "Please enter your phone number");
        if (Zip.size() < 2) complain(errorText, "Please type in your zip code");
    } else {
        if (Gender.empty()) complain(errorText, "Please select your gender");
        if (AgeRange == 0) complain(errorText, "Please select your age range");
        if (Zip.size() < 2) complain(errorText, "Please type in your zip code");
        if (Country == 0) complain(errorText, "Please select your country");
    }
    return errorText.empty();
}
