#include "analysis/CabinetFile.h"

#include <setupapi.h>

#include "BoundedText.h"
#include "InstallLog.h"
#include "SystemLibraries.h"
#include "description/PathHelpers.h"

namespace {
UINT CALLBACK cabinetCallback(PVOID context, UINT notification, UINT_PTR param1, UINT_PTR)
{
    return static_cast<CCabinetFile*>(context)->onNotification(notification, param1);
}
}  // namespace

UINT CCabinetFile::onNotification(UINT notification, UINT_PTR param1)
{
    switch (notification) {
    case SPFILENOTIFY_CABINETINFO:
        return NO_ERROR;
    case SPFILENOTIFY_FILEEXTRACTED:
        // Where Windows tells of a member it could not write.
        if (reinterpret_cast<const FILEPATHS_A*>(param1)->Win32Error != NO_ERROR) writeFailed = true;
        return NO_ERROR;
    case SPFILENOTIFY_FILEINCABINET: {
        auto* info = reinterpret_cast<FILE_IN_CABINET_INFO_A*>(param1);
        if (mode != extracting) {
            entries.push_back({info->NameInCabinet, info->FileSize});
            return FILEOP_SKIP;
        }
        if (wantedName[0] && !equalsNoCase(wantedName, info->NameInCabinet)) return FILEOP_SKIP;
        // A member goes into the extraction folder and nowhere else: not up,
        // not to a drive, and not under a cut name that would be another file.
        if (!isPlainMemberName(info->NameInCabinet)) return FILEOP_SKIP;
        if (joinedLength(targetFolder, info->NameInCabinet) >= sizeof info->FullTargetName) return FILEOP_SKIP;
        joinPath(targetFolder, info->NameInCabinet, info->FullTargetName,
                 sizeof info->FullTargetName);
        copyText(memberPath, info->FullTargetName, sizeof memberPath);
        memberSize = info->FileSize;
        return FILEOP_DOIT;
    }
    default:
        return FILEOP_SKIP;
    }
}

int CCabinetFile::listFiles(const char* path)
{
    copyText(cabinetPath, path, sizeof cabinetPath);
    mode = listing;
    BOOL listed = systemDll::SetupIterateCabinetA(cabinetPath, 0, cabinetCallback, this);
    mode = idle;
    return listed == TRUE;
}

int CCabinetFile::extractFile(size_t index, const char* folder)
{
    if (index >= entries.size()) return 1;
    copyText(wantedName, entries[index].name.c_str(), sizeof wantedName);
    installLog.writef("Expanding file %s", wantedName);
    mode = extracting;
    writeFailed = false;
    memberPath[0] = 0;
    copyText(targetFolder, folder, sizeof targetFolder);
    BOOL iterated = systemDll::SetupIterateCabinetA(cabinetPath, 0, cabinetCallback, this);
    mode = idle;
    // Wine 8 answers TRUE, and NO_ERROR for each member, when a full disk cut
    // the members short: the size on disk tells.
    if (memberPath[0] && fileSizeOf(memberPath) != memberSize) writeFailed = true;
    return iterated == TRUE && !writeFailed;
}
