#pragma once
#include <windows.h>

#include <string>
#include <vector>

struct CCabinetEntry {
    std::string name;  // as spelled in the cabinet
    DWORD size;
};

// The payload's cabinet: lists its members, and unpacks one member at a time
// through SetupIterateCabinetA (one pass over the cabinet per member).
class CCabinetFile {
public:
    enum Mode { idle = 0, listing = 1, extracting = 2 };

    int listFiles(const char* path);
    size_t fileCount() const { return entries.size(); }
    // Unpacks member `index` into `folder`. 0 when the cabinet could not be
    // read through or the member not written whole (a full disk); a member
    // passed over for its name counts as done (the description's check finds it
    // missing).
    int extractFile(size_t index, const char* folder);

    std::vector<CCabinetEntry> entries;
    int mode = idle;
    char cabinetPath[MAX_PATH] = "";
    char targetFolder[MAX_PATH] = "";
    char wantedName[MAX_PATH] = "";
    // The member being unpacked: where it goes, its size, whether a write failed.
    char memberPath[MAX_PATH] = "";
    DWORD memberSize = 0;
    bool writeFailed = false;

    // What the cabinet iteration asks of us, for one notification.
    UINT onNotification(UINT notification, UINT_PTR param1);
};
