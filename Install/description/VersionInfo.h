#pragma once
#include <cstddef>

struct CInstallFile;

// FileVersion and CompanyName (trimmed) of the payload file, from the version
// block 040904b0; a missing block or value leaves the member as it was.
int readVersionInfo(CInstallFile& file);
// "0.0.0.0", then the FileVersion text of the file at `path` if it has one.
int getFileVersionText(const char* path, char* out, size_t capacity);
