#include "engine/ComponentRegistration.h"

#include <ole2.h>

#include "wizard/InstallDialog.h"

namespace {
typedef HRESULT(STDAPICALLTYPE* RegistrationEntry)();

RegistrationEntry findEntry(HMODULE library, const char* name)
{
    return reinterpret_cast<RegistrationEntry>(
        reinterpret_cast<void*>(GetProcAddress(library, name)));
}
}  // namespace

bool showLastSystemError(HWND)
{
    DWORD error = GetLastError();
    char text[256];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, error, 0, text, sizeof text - 1, nullptr);
    if (length == 0) return false;
    text[length < sizeof text ? length : sizeof text - 1] = 0;
    ERRORMSG(text, false);
    return true;
}

bool registerComponent(HWND window, const char* path)
{
    if (FAILED(OleInitialize(nullptr))) showLastSystemError(window);
    bool registered = false;
    HMODULE library = LoadLibraryA(path);
    if (!library) {
        showLastSystemError(window);
    } else {
        registered = true;
        if (RegistrationEntry entry = findEntry(library, "DllRegisterServer"))
            registered = entry() == S_OK;
        FreeLibrary(library);
    }
    OleUninitialize();
    return registered;
}

bool unregisterComponent(const char* path)
{
    HMODULE library = LoadLibraryA(path);
    if (!library) return false;
    OleInitialize(nullptr);
    RegistrationEntry entry = findEntry(library, "DllUnregisterServer");
    if (entry) entry();
    FreeLibrary(library);
    OleUninitialize();
    return entry != nullptr;
}
