#pragma once
#include <windows.h>

#include <nb30.h>

#include <string>

// Which machine a sign-up comes from: "MA" and the first real Ethernet
// adapter's address, else "VS" and drive C's serial, else empty. Worked out
// afresh on every call; stored nowhere.
std::string machineIdentity();
std::string adapterIdentity();
std::string volumeIdentity();

// The adapter form of one NetBIOS status, or empty for an adapter that does
// not count: not Ethernet, or the address 44 45 53 54 00 00.
std::string adapterForm(const ADAPTER_STATUS& status);
// "VS" and the serial as a signed number.
std::string volumeForm(DWORD serial);

// netapi32.dll, loaded for one search: the program runs where it is missing.
class CNetbiosLibrary {
public:
    typedef UCHAR(APIENTRY* NetbiosCall)(PNCB);

    CNetbiosLibrary();
    ~CNetbiosLibrary();
    CNetbiosLibrary(const CNetbiosLibrary&) = delete;
    CNetbiosLibrary& operator=(const CNetbiosLibrary&) = delete;

    HMODULE module;
    NetbiosCall netbios;
};
