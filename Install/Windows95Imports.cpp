// The compiler's runtime (the locks of its exception unwinder and thread-local
// storage) creates its semaphores with CreateSemaphoreW. Windows 95, 98 and ME
// export that function but answer NULL from it, so every such lock would
// run without its semaphore there. The runtime's import is answered here
// instead, with the ANSI call that every named Windows has: the linker takes
// this pointer for the import and SETUP.EXE does not import CreateSemaphoreW.
//
// Linked into SETUP.EXE itself (cmake/SetupPackaging.cmake): from a library
// the linker would not take it before the runtime asks for the import.
#include <windows.h>

namespace {
HANDLE WINAPI createSemaphore(LPSECURITY_ATTRIBUTES attributes, LONG initial, LONG maximum,
                              LPCWSTR name)
{
    char narrow[MAX_PATH] = "";
    if (name && !WideCharToMultiByte(CP_ACP, 0, name, -1, narrow, sizeof narrow, nullptr, nullptr)) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    return CreateSemaphoreA(attributes, initial, maximum, name ? narrow : nullptr);
}
}  // namespace

#ifdef _WIN64
extern "C" decltype(&createSemaphore) createSemaphoreImport asm("__imp_CreateSemaphoreW");
#else
extern "C" decltype(&createSemaphore) createSemaphoreImport asm("__imp__CreateSemaphoreW@16");
#endif
decltype(&createSemaphore) createSemaphoreImport = createSemaphore;
