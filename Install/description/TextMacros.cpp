#include <cstring>
#include <string>

#include "BoundedText.h"
#include "RegistryKey.h"
#include "wizard/InstallWizard.h"

namespace {
// A value that names itself (a title of "%TITLE%") would be scanned again for
// ever; after this many substitutions the rest of the text stays as it is.
const int maxSubstitutions = 256;
}

int CInstallWizard::lookupMacro(const char* name, char* value, size_t capacity)
{
    if (!value || capacity == 0) return 0;
    value[0] = 0;
    if (equalsNoCase(name, "TITLE")) {
        char title[256];
        copyText(title, settings.title.c_str(), sizeof title);
        copyText(value, title, capacity);
    } else if (equalsNoCase(name, "PROGRAMFILES")) {
        CRegistryKey key(HKEY_LOCAL_MACHINE);
        char folder[256] = "";
        if (key.open("Software\\Microsoft\\Windows\\CurrentVersion", false, KEY_ALL_ACCESS) &&
            key.readString("ProgramFilesDir", folder, sizeof folder))
            copyText(value, folder, capacity);
    } else if (equalsNoCase(name, "WINSYSDIR")) {
        char folder[MAX_PATH] = "";
        if (GetSystemDirectoryA(folder, sizeof folder) == 0) folder[0] = 0;
        copyText(value, folder, capacity);
    }
    return value[0] != 0;
}

char* CInstallWizard::expandMacros(char* text, size_t size)
{
    if (!text || size == 0) return text;
    std::string work(text, strnlen(text, size));
    size_t p = 0;
    for (int round = 0; round < maxSubstitutions; ++round) {
        size_t open = work.find('%', p);
        if (open == std::string::npos) break;
        size_t close = work.find('%', open + 1);
        if (close == std::string::npos) break;  // a lone percent sign stays as it is
        char name[256];
        copyTextPart(name, work.c_str() + open + 1, close - open - 1, sizeof name);
        char value[256];
        lookupMacro(name, value, 255);
        work.replace(open, close - open + 1, value);
        // The inserted value is scanned again, from its first byte.
        p = open;
        if (p >= size) break;
    }
    copyText(text, work.c_str(), size);
    return text;
}

void CInstallWizard::expandControlText(HWND control)
{
    char className[256];
    if (!GetClassNameA(control, className, sizeof className)) return;
    if (!equalsNoCase(className, "STATIC") && !equalsNoCase(className, "BUTTON")) return;
    char text[2048];
    GetWindowTextA(control, text, sizeof text);
    expandMacros(text, sizeof text);
    SetWindowTextA(control, text);
}

char* CInstallWizard::expandCopy(const char* source, char* buffer, size_t size)
{
    copyText(buffer, source, size);
    return expandMacros(buffer, size);
}
