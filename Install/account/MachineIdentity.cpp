#include "account/MachineIdentity.h"

#include <cstdio>
#include <cstring>

#include "BoundedText.h"
#include "SystemLibraries.h"

CNetbiosLibrary::CNetbiosLibrary() : module(loadSystemLibrary("netapi32.dll")), netbios(nullptr)
{
    if (module)
        netbios = reinterpret_cast<NetbiosCall>(
            reinterpret_cast<void*>(GetProcAddress(module, "Netbios")));
}

CNetbiosLibrary::~CNetbiosLibrary()
{
    if (module) FreeLibrary(module);
}

std::string adapterForm(const ADAPTER_STATUS& status)
{
    static const UCHAR dummy[6] = {0x44, 0x45, 0x53, 0x54, 0x00, 0x00};
    if (status.adapter_type != 0xFE) return "";
    // "DEST": the address of the dial-up adapter, the same on every machine.
    if (std::memcmp(status.adapter_address, dummy, sizeof dummy) == 0) return "";
    const UCHAR* a = status.adapter_address;
    char text[32];
    formatText(text, sizeof text, "MA%02x%02x%02x%02x%02x%02x", a[0], a[1], a[2], a[3], a[4], a[5]);
    return text;
}

std::string volumeForm(DWORD serial)
{
    char text[32];
    formatText(text, sizeof text, "VS%d", static_cast<int>(serial));
    return text;
}

std::string adapterIdentity()
{
    CNetbiosLibrary library;
    if (!library.netbios) return "";

    NCB ncb;
    LANA_ENUM lanas;
    std::memset(&ncb, 0, sizeof ncb);
    std::memset(&lanas, 0, sizeof lanas);
    ncb.ncb_command = NCBENUM;
    ncb.ncb_buffer = reinterpret_cast<PUCHAR>(&lanas);
    ncb.ncb_length = sizeof lanas;
    if (library.netbios(&ncb) != 0) return "";

    union {
        ADAPTER_STATUS status;
        UCHAR bytes[600];
    } adapter;
    for (UCHAR i = 0; i < lanas.length && i < MAX_LANA + 1; ++i) {
        std::memset(&ncb, 0, sizeof ncb);
        ncb.ncb_lana_num = lanas.lana[i];
        ncb.ncb_command = NCBRESET;
        // One adapter that cannot be reset ends the search, later ones unseen.
        if (library.netbios(&ncb) != 0) return "";

        std::memset(&ncb, 0, sizeof ncb);
        std::memset(&adapter, 0, sizeof adapter);
        ncb.ncb_lana_num = lanas.lana[i];
        ncb.ncb_command = NCBASTAT;
        std::memcpy(ncb.ncb_callname, "*               ", NCBNAMSZ);
        ncb.ncb_buffer = adapter.bytes;
        ncb.ncb_length = sizeof adapter.bytes;
        if (library.netbios(&ncb) != 0) return "";

        std::string form = adapterForm(adapter.status);
        if (!form.empty()) return form;
    }
    return "";
}

std::string volumeIdentity()
{
    char volumeName[512];
    char fileSystem[512];
    DWORD serial = 0;
    DWORD nameLength = 0;
    DWORD flags = 0;
    // Always drive C, whatever drive Windows is on.
    if (!GetVolumeInformationA("c:\\", volumeName, sizeof volumeName, &serial, &nameLength, &flags,
                               fileSystem, sizeof fileSystem))
        return "";
    return volumeForm(serial);
}

std::string machineIdentity()
{
    std::string identity = adapterIdentity();
    if (identity.empty()) identity = volumeIdentity();
    return identity;
}
