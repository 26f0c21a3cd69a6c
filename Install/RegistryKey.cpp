#include "RegistryKey.h"

#include <cstring>

CRegistryKey::CRegistryKey() : CRegistryKey(HKEY_LOCAL_MACHINE) {}

CRegistryKey::CRegistryKey(HKEY rootKey) : root(rootKey), current(nullptr), stack(), depth(0) {}

CRegistryKey::~CRegistryKey()
{
    while (depth > 0) close();
}

bool CRegistryKey::setRoot(HKEY newRoot)
{
    root = newRoot;
    return true;
}

bool CRegistryKey::open(const char* path, bool create, REGSAM access)
{
    if (depth >= maxDepth) return false;
    HKEY parent = current ? current : root;
    HKEY opened = nullptr;
    LONG result;
    if (create)
        result = RegCreateKeyExA(parent, path, 0, nullptr, 0, access, nullptr, &opened, nullptr);
    else
        result = RegOpenKeyExA(parent, path, 0, access, &opened);
    if (result != ERROR_SUCCESS) return false;
    stack[depth++] = opened;
    current = opened;
    return true;
}

bool CRegistryKey::close()
{
    if (depth == 0) return true;
    RegCloseKey(stack[--depth]);
    stack[depth] = nullptr;
    current = depth > 0 ? stack[depth - 1] : nullptr;
    return true;
}

bool CRegistryKey::writeString(const char* name, const char* text)
{
    if (!current) return false;
    return RegSetValueExA(current, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                          static_cast<DWORD>(std::strlen(text) + 1)) == ERROR_SUCCESS;
}

bool CRegistryKey::writeBool(const char* name, bool value)
{
    return writeString(name, value ? "1" : "0");
}

bool CRegistryKey::readString(const char* name, char* buffer, DWORD capacity)
{
    if (!current || !buffer || capacity == 0) return false;
    DWORD size = capacity;
    if (RegQueryValueExA(current, name, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size) !=
        ERROR_SUCCESS)
        return false;
    // A value stored without a terminator (binary data, or a string written
    // carelessly by someone else) still leaves a terminated text: the last byte
    // of a full buffer gives way to the zero.
    if (size < capacity)
        buffer[size] = 0;
    else if (buffer[capacity - 1] != 0)
        buffer[capacity - 1] = 0;
    return true;
}

bool CRegistryKey::readBool(const char* name, bool& value)
{
    char text[255];
    if (!readString(name, text, sizeof text)) return false;
    value = !(text[0] == 0 || text[0] == '0');
    return true;
}

HKEY rootKeyByName(const char* name)
{
    static const struct { const char* name; HKEY key; } roots[] = {
        {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
        {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
        {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
        {"HKEY_USERS", HKEY_USERS},
        {"HKEY_PERFORMANCE_DATA", HKEY_PERFORMANCE_DATA},
        {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
    };
    for (const auto& r : roots)
        if (lstrcmpiA(name, r.name) == 0) return r.key;
    return nullptr;
}
