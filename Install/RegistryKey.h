#pragma once
#include <windows.h>

// The program's one way to the registry: a stack of open keys. Each open goes
// below the key opened last, close steps back up, and the destructor closes
// whatever is still open, top first. Values go in and come out as strings.
class CRegistryKey {
public:
    CRegistryKey();
    explicit CRegistryKey(HKEY root);
    ~CRegistryKey();
    CRegistryKey(const CRegistryKey&) = delete;
    CRegistryKey& operator=(const CRegistryKey&) = delete;

    bool setRoot(HKEY newRoot);
    bool open(const char* path, bool create, REGSAM access);
    bool close();
    bool writeString(const char* name, const char* text);
    bool writeBool(const char* name, bool value);
    // `capacity` is the size of `buffer` in bytes. The value's type is not looked
    // at; a string is zero-terminated even when the registry did not store one.
    bool readString(const char* name, char* buffer, DWORD capacity);
    bool readBool(const char* name, bool& value);

    HKEY handle() const { return current; }
    int openCount() const { return depth; }

private:
    static const int maxDepth = 50;
    HKEY root;
    HKEY current;
    HKEY stack[maxDepth];
    int depth;
};

// "HKEY_LOCAL_MACHINE" and the other root names, without regard to case;
// null for a name that is none of them.
HKEY rootKeyByName(const char* name);
