#include "Program.h"

HINSTANCE moduleInstance = GetModuleHandleA(nullptr);

char* loadString(UINT id, char* buffer, int capacity)
{
    if (capacity <= 0) return buffer;
    buffer[0] = 0;
    if (LoadStringA(moduleInstance, id, buffer, capacity) <= 0) buffer[0] = 0;
    return buffer;
}
