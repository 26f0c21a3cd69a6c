#pragma once
#include <windows.h>

#include <string>

#include "account/InternetSession.h"

// The account form as the user fills it in, and at the same time the internet
// session through which it is sent. Members bear the names of their keys on
// the wire.
class AccountDetails : public CInternetSession {
public:
    // Clears formBody and writes all 24 keys anew, in the service's order.
    void buildForm();
    // The length of formBody, built first only if it is empty.
    size_t formLength();
    void addField(const char* name, const char* value);
    void addNumber(const char* name, int value);

    // The check that the service would take these details ("cu"). On false,
    // errorText holds a status line for the progress page.
    bool validateUserData(const char* url);
    // The sign-up; copies each Set-Cookie of the reply into the cookie store.
    // False when the service refused, and when no reply came at all.
    bool registerUser(HWND window, const char* url, const char* command);

    // The checks of the account forms. Each writes errorText afresh, one CR LF
    // ended line per complaint, and is true when it stayed empty.
    bool checkLoginFields();
    // The business form when regoCommand is "AddTrial" (any case), else the
    // personal one.
    bool checkDetailFields(const char* regoCommand);
    bool isEmailValid() const;
    // At least 4 characters, and the repetition equal to it.
    bool isPasswordValid() const;

    std::string UserCode;
    std::string Password;
    std::string RepeatPassword;
    std::string PasswordHint;
    std::string Email;
    std::string FirstName;
    std::string LastName;
    int AgeRange = 0;
    std::string Gender;
    std::string Zip;
    int Country = 0;
    int Industry = 0;
    int Occupation = 0;
    int NewServices = 0;
    std::string errorText;
    std::string formBody;
    std::string Command = "add";
    std::string Phone;
    std::string company_name;
    int number_of_employees = 0;
    std::string website;
    std::string JobTitle;
    std::string company_type;
    std::string CommandAction;
};
