#pragma once
#include <windows.h>

#include <string>

// The program's own English sentence for a WinInet error number. For
// ERROR_INTERNET_EXTENDED_ERROR the server's response text stands instead:
// `responseInfo` when the failing thread took it, else this thread's.
void internetErrorText(DWORD code, std::string& text, const char* responseInfo = nullptr);
// The constant's name, for the debug trace; null outside the name table.
const char* internetErrorConstant(DWORD code);
// Writes the constant's name to the debug trace; nothing else.
void internetErrorName(DWORD code);
