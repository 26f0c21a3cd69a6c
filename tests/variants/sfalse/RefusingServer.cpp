// TAVRIN.DLL of the "sfalse" variant: an in-process server whose
// self-registration answers S_FALSE and writes nothing. SETUP.EXE must take any
// answer but S_OK as a failed registration.
#include <windows.h>

STDAPI DllRegisterServer() { return S_FALSE; }

STDAPI DllUnregisterServer() { return S_OK; }
