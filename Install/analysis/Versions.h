#pragma once

// A version is four signed 32-bit fields, most significant first. Versions are
// held as text ("5.00.2314.1003", "1, 0, 0, 7") and parsed when compared.
struct CVersion {
    int field[4];
};

CVersion parseVersion(const char* text);
// -1 if a is lower, 1 if higher, 0 if all four fields are equal.
int compareVersions(const char* a, const char* b);
