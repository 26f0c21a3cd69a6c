#pragma once
#include <string>

#include "analysis/CabinetFile.h"
#include "wizard/InstallDialog.h"

// Dialog 106: writes the cabinet of the program's resources to a temporary
// file and unpacks every member into a new folder below the temporary folder.
class CInstallExtract : public CInstallDialog {
public:
    explicit CInstallExtract(CCabinetFile* cabinetFile) : cabinet(cabinetFile) {}
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;
    void onDlgReady() override;

    CCabinetFile* cabinet;
    std::string tempFolder;
};

// Makes the extraction folder in `folder`: "tavrin", else "tavrin1",
// "tavrin2", ..., the first name that nothing holds and that this call itself
// creates. Its path, or empty when none could be made.
std::string makeExtractionFolder(const char* folder);
