#pragma once
// DLLs that Windows does not keep on its list of known DLLs are looked for in
// the program's own folder first. SETUP.EXE is started from a download folder
// and runs with administrator rights, so a wininet.dll or version.dll that
// someone left beside it would run as part of the installer. Such DLLs are
// therefore neither imported nor loaded by name: each is loaded by its full
// path in the system folder, with its own imports looked for beside it, and its
// functions are found by name on their first call. SETUP.EXE imports only
// kernel32, user32, gdi32, advapi32, shell32, ole32 and msvcrt, which Windows
// always takes from the system folder.
#include <windows.h>

#include <commctrl.h>
#include <setupapi.h>
#include <wininet.h>

#include <atomic>

// Loads `fileName` ("netapi32.dll") from the system folder; null when it is not
// there. Each call is one more reference for FreeLibrary.
HMODULE loadSystemLibrary(const char* fileName);

// A DLL of the system folder, loaded on first use and kept for the run.
class CSystemLibrary {
public:
    constexpr explicit CSystemLibrary(const char* fileName) : fileName(fileName) {}
    CSystemLibrary(const CSystemLibrary&) = delete;
    CSystemLibrary& operator=(const CSystemLibrary&) = delete;
    // The address of `name`, or null when the DLL or the function is missing.
    FARPROC find(const char* name);

private:
    const char* fileName;
    std::atomic<HMODULE> module{nullptr};
};

// One function of such a DLL, called as the function itself is. When the DLL
// or the function is missing, a call fails as the function fails: a zero or
// null result, with ERROR_PROC_NOT_FOUND as the last error.
template <typename Function> class CSystemFunction;
template <typename Result, typename... Arguments>
class CSystemFunction<Result(WINAPI*)(Arguments...)> {
public:
    constexpr CSystemFunction(CSystemLibrary& library, const char* name) : library(library), name(name) {}
    CSystemFunction(const CSystemFunction&) = delete;
    CSystemFunction& operator=(const CSystemFunction&) = delete;

    Result operator()(Arguments... arguments)
    {
        // The request worker calls WinInet too: a second lookup of the same
        // name finds the same address, so a race costs one lookup.
        FARPROC found = address.load(std::memory_order_acquire);
        if (!found) {
            found = library.find(name);
            address.store(found, std::memory_order_release);
        }
        if (!found) {
            SetLastError(ERROR_PROC_NOT_FOUND);
            return Result();
        }
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(reinterpret_cast<void*>(found))(arguments...);
    }

private:
    CSystemLibrary& library;
    const char* name;
    std::atomic<FARPROC> address{nullptr};
};

namespace systemDll {
extern CSystemLibrary wininet;
extern CSystemLibrary version;
extern CSystemLibrary comctl32;
extern CSystemLibrary setupapi;

#define SYSTEM_DLL_FUNCTION(library, name) extern CSystemFunction<decltype(&::name)> name
#include "SystemFunctions.inc"
#undef SYSTEM_DLL_FUNCTION
}  // namespace systemDll
