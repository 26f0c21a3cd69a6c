#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "UnitFiles.h"
#include "engine/UninstallScript.h"
#include "wizard/InstallWizard.h"

namespace {
// The expectations are written with LF; the files end every line in CR LF.
std::string crlf(const std::string& text)
{
    std::string out;
    for (char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
}

CInstallFile payloadFile(const char* name, const std::string& folder, bool autoReg, const std::string& shortPath)
{
    CInstallFile file;
    file.fileName = name;
    file.destFolder = folder;
    file.autoReg = autoReg;
    file.shortPath = shortPath;
    return file;
}
}  // namespace

TEST(UninstallScript, ProductFilesGiveTheWholeScriptAndItsCommand)
{
    const std::string destination = tempFolder("TavRin Uninstall");
    char shortPath[MAX_PATH] = "";
    GetShortPathNameA(destination.c_str(), shortPath, sizeof shortPath);
    const std::string shortDestination = shortPath;
    ASSERT_NE("", shortDestination);
    ASSERT_NE(destination, shortDestination);  // the blank has to go, or the test shows nothing

    CInstallWizard wizard(false);
    wizard.settings.title = "Side Bar";
    wizard.settings.readme = "readme.txt";
    wizard.settings.destination = destination;
    auto& files = wizard.settings.files;
    files.push_back(payloadFile("TAVRIN.DLL", destination, true, shortDestination + "\\TAVRIN.DLL"));
    files.push_back(payloadFile("tvdownload.exe", destination, false, shortDestination + "\\TVDOWN~1.EXE"));
    files.push_back(payloadFile("tvprotocol.dll", destination, true, "TVPROT~1.DLL"));
    files.push_back(payloadFile("tvcodec.acm", "C:\\windows\\system32", false, "C:\\windows\\system32\\TVCODEC.ACM"));
    files.back().acmReg = true;
    files.push_back(payloadFile("tvnotes.txt", destination, false, ""));

    std::string script = "an earlier script";
    buildUninstallScript(&wizard, script, "C:\\My Windows\\INF\\tvuninst.inf");

    EXPECT_EQ(crlf(R"inf([version]
signature = "$CHICAGO$"
AdvancedINF = 2.5, "%ERROR_WRONG_ADVPACK_VERSION%"

[CustTavRinDirs]
49000,49001,49002,49003 = ProgFilesDir,5
49100,49101,49102,49103 = TavRinFilesDir,5

[ProgFilesDir]
HKLM,'Software\Microsoft\Windows\CurrentVersion','ProgramFilesDir',,"%24%"

[TavRinFilesDir]
,,,,")inf" + shortDestination + R"inf("

[TavRinUninstall]
BeginPrompt        = UninstallPrompt
CustomDestination  = CustTavRinDirs
DelReg             = uninstall.reg
AddReg             = uninstall2.reg
UnRegisterOCXs     = self.registering.dlls
Reboot             = 1
[TavRinUninstall2]
CustomDestination  = CustTavRinDirs
EndPrompt          = UninstallComplete
DelFiles           = README.TXT,TAVRIN.DLL,tvdownload.exe,tvprotocol.dll,tvcodec.acm,tvnotes.txt
DelDirs            = DelTavRinDir
Cleanup            = 1

[UninstallPrompt]
Prompt             = "%UNINSTALL_PROMPT%"
ButtonType         = YESNO
Title              = "%PRODUCT_TITLE%"

[UninstallComplete]
Prompt             = "%PRODUCT_TITLE% been uninstalled
Title              = "%PRODUCT_TITLE%"

[DestinationDirs]
README.TXT = 49100
TAVRIN.DLL = 49100
tvdownload.exe = 49100
tvprotocol.dll = 49100
tvcodec.acm = 49100
tvnotes.txt = 49100

[README.TXT]
readme.txt,,,32
[TAVRIN.DLL]
TAVRIN.DLL,,,32
[tvdownload.exe]
TVDOWN~1.EXE,,,32
[tvprotocol.dll]
TVPROT~1.DLL,,,32
[tvcodec.acm]
TVCODEC.ACM,,,32
[tvnotes.txt]
,,,32

[self.registering.dlls]
%49100%\TAVRIN.DLL
%49100%\TVPROT~1.DLL

[DelTavRinDir]
%49101%

[uninstall.reg]
HKLM,"Software\Microsoft\Windows\CurrentVersion\Uninstall\TavRin"

[uninstall2.reg]
HKLM,"Software\Microsoft\Windows\CurrentVersion\RunOnce","TavRinUninstall",,"RunDll32 %11%\Advpack.dll,LaunchINFSection C:\My Windows\INF\tvuninst.inf,TavRinUninstall2

[strings]
PRODUCT_TITLE      = "Side Bar"
UNINSTALL_PROMPT   = "This will remove Side Bar from your computer.  Do you wish to proceed?"
TAVRIN_DIR         = "TavRin"
)inf"),
              script);
    for (auto& file : files) file.autoReg = false;  // no self-registering files: the heading alone
    buildUninstallScript(&wizard, script, "C:\\windows\\INF\\tvuninst.inf");
    EXPECT_NE(std::string::npos, script.find(crlf("\n\n[self.registering.dlls]\n\n[DelTavRinDir]\n")));
    EXPECT_EQ("rundll32 advpack.dll,LaunchINFSection C:\\My Windows\\INF\\tvuninst.inf,TavRinUninstall",
              uninstallCommandLine("C:\\My Windows\\INF\\tvuninst.inf"));  // the first of the two stages
    RemoveDirectoryA(destination.c_str());
}
