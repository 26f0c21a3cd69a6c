#pragma once
#include <windows.h>

// The instance handle WinMain receives; every dialog, string, cursor and
// resource is loaded from it.
extern HINSTANCE moduleInstance;

// LoadStringA from the program's string table into `buffer`, always terminated;
// an id that is not there gives an empty text.
char* loadString(UINT id, char* buffer, int capacity);
