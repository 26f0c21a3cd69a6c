#pragma once
// The unit tests share the file helpers of the process tests.
#include "SetupProcess.h"

// "<temp folder><name> <process id>", made if missing.
inline std::string tempFolder(const std::string& name)
{
    std::string folder = tempFolder() + name + " " + std::to_string(GetCurrentProcessId());
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}
