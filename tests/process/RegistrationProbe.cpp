// A component for the tests: DllRegisterServer records that it ran under
// HKCU\Software\TavRinTests and answers S_FALSE when TAVRIN_PROBE_REFUSE is set.
#include <windows.h>

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE DllRegisterServer()
{
    HKEY key;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\TavRinTests", 0, nullptr, 0, KEY_ALL_ACCESS,
                        nullptr, &key, nullptr) == ERROR_SUCCESS) {
        DWORD count = 0, size = sizeof count;
        RegQueryValueExA(key, "ProbeRegistered", nullptr, nullptr, reinterpret_cast<BYTE*>(&count), &size);
        ++count;
        RegSetValueExA(key, "ProbeRegistered", 0, REG_DWORD, reinterpret_cast<BYTE*>(&count), sizeof count);
        RegCloseKey(key);
    }
    char refuse[8];
    return GetEnvironmentVariableA("TAVRIN_PROBE_REFUSE", refuse, sizeof refuse) ? S_FALSE : S_OK;
}
