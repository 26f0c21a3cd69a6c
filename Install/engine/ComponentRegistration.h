#pragma once
#include <windows.h>

// Loads a component and calls its DllRegisterServer. A library without that
// export counts as registered; any result but S_OK (S_FALSE too) does not.
bool registerComponent(HWND window, const char* path);
// Loads a component and calls its DllUnregisterServer if it has one. Silent.
bool unregisterComponent(const char* path);
// The system's text for GetLastError through ERRORMSG; false if it has none.
bool showLastSystemError(HWND window);
