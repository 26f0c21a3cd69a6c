#include "SystemLibraries.h"

#include "BoundedText.h"
#include "description/PathHelpers.h"

HMODULE loadSystemLibrary(const char* fileName)
{
    char folder[MAX_PATH];
    UINT length = GetSystemDirectoryA(folder, sizeof folder);
    if (length == 0 || length >= sizeof folder) return nullptr;
    char path[MAX_PATH];
    if (joinedLength(folder, fileName) >= sizeof path) return nullptr;
    joinPath(folder, fileName, path, sizeof path);
    // The altered search looks for the DLL's own imports in its folder, not in
    // the program's.
    return LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

FARPROC CSystemLibrary::find(const char* name)
{
    HMODULE loaded = module.load(std::memory_order_acquire);
    if (!loaded) {
        loaded = loadSystemLibrary(fileName);
        if (!loaded) return nullptr;
        HMODULE expected = nullptr;
        // Loaded on two threads at once: one reference is enough.
        if (!module.compare_exchange_strong(expected, loaded)) {
            FreeLibrary(loaded);
            loaded = expected;
        }
    }
    return GetProcAddress(loaded, name);
}

namespace systemDll {
CSystemLibrary wininet("wininet.dll");
CSystemLibrary version("version.dll");
CSystemLibrary comctl32("comctl32.dll");
CSystemLibrary setupapi("setupapi.dll");

#define SYSTEM_DLL_FUNCTION(library, name) CSystemFunction<decltype(&::name)> name(library, #name)
#include "SystemFunctions.inc"
#undef SYSTEM_DLL_FUNCTION
}  // namespace systemDll
