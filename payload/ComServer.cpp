// Registration of the add-on's in-process servers. TAVRIN.DLL, TAVRINBH.DLL and
// tvprotocol.dll are each built from this file with a class id of their own
// (SERVER_CLASS_ID); registering writes
//   HKEY_CLASSES_ROOT\CLSID\{id}\InprocServer32  (default) = full path of this DLL
//                                                 ThreadingModel = Apartment
// and unregistering removes HKEY_CLASSES_ROOT\CLSID\{id} with everything below it.
// The entry points are exported under their plain names by ComServer.def.
#include <windows.h>

#ifndef SERVER_CLASS_ID
#error SERVER_CLASS_ID must be defined as the class id in braces, e.g. "{16C7C243-7FA0-11D3-A0E4-0A02B9000000}"
#endif

namespace {
HINSTANCE serverModule = nullptr;
const char classKey[] = "CLSID\\" SERVER_CLASS_ID;
const char serverKey[] = "CLSID\\" SERVER_CLASS_ID "\\InprocServer32";

LONG setText(HKEY key, const char* name, const char* text)
{
    return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                          static_cast<DWORD>(lstrlenA(text) + 1));
}
}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        serverModule = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

STDAPI DllRegisterServer()
{
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(serverModule, path, sizeof path);
    if (length == 0) return HRESULT_FROM_WIN32(GetLastError());
    // A path that fills the buffer was cut (and may lack its terminator).
    if (length >= sizeof path) return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);

    HKEY key = nullptr;
    LONG error = RegCreateKeyExA(HKEY_CLASSES_ROOT, serverKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                 KEY_SET_VALUE, nullptr, &key, nullptr);
    if (error != ERROR_SUCCESS) return HRESULT_FROM_WIN32(error);
    error = setText(key, nullptr, path);
    if (error == ERROR_SUCCESS) error = setText(key, "ThreadingModel", "Apartment");
    RegCloseKey(key);
    return error == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(error);
}

STDAPI DllUnregisterServer()
{
    const LONG error = RegDeleteTreeA(HKEY_CLASSES_ROOT, classKey);
    // A class that is not registered has nothing left to remove.
    if (error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND) return S_OK;
    return HRESULT_FROM_WIN32(error);
}
