#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "BoundedText.h"
#include "engine/RestartScript.h"
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

std::string tempFolder(const std::string& name)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = temp + name + " " + std::to_string(GetCurrentProcessId());
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

std::string shortName(const std::string& path)
{
    char out[MAX_PATH] = "";
    GetShortPathNameA(path.c_str(), out, sizeof out);
    return out;
}

bool writeFile(const std::string& path, const std::string& content)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool ok = WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(file);
    return ok && written == content.size();
}

std::string readFile(const std::string& path)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    char buffer[8192];
    DWORD got = 0;
    if (file != INVALID_HANDLE_VALUE) ReadFile(file, buffer, sizeof buffer, &got, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return std::string(buffer, got);
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

TEST(UninstallScript, ProductFilesGiveTheWholeScript)
{
    const std::string destination = tempFolder("TavRin Uninstall");
    const std::string shortDestination = shortName(destination);
    ASSERT_NE("", shortDestination);
    ASSERT_NE(destination, shortDestination);  // the blank has to go, or the test shows nothing

    CInstallWizard wizard(false);
    wizard.settings.title = "TavRin Personal";
    wizard.settings.readme = "readme.txt";
    wizard.settings.destination = destination;
    auto& files = wizard.settings.files;
    files.push_back(payloadFile("TAVRIN.DLL", destination, true, shortDestination + "\\TAVRIN.DLL"));
    files.push_back(payloadFile("TAVRINBH.DLL", destination, true, shortDestination + "\\TAVRINBH.DLL"));
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
DelFiles           = README.TXT,TAVRIN.DLL,TAVRINBH.DLL,tvdownload.exe,tvprotocol.dll,tvcodec.acm,tvnotes.txt
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
TAVRINBH.DLL = 49100
tvdownload.exe = 49100
tvprotocol.dll = 49100
tvcodec.acm = 49100
tvnotes.txt = 49100

[README.TXT]
readme.txt,,,32
[TAVRIN.DLL]
TAVRIN.DLL,,,32
[TAVRINBH.DLL]
TAVRINBH.DLL,,,32
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
%49100%\TAVRINBH.DLL
%49100%\TVPROT~1.DLL

[DelTavRinDir]
%49101%

[uninstall.reg]
HKLM,"Software\Microsoft\Windows\CurrentVersion\Uninstall\TavRin"

[uninstall2.reg]
HKLM,"Software\Microsoft\Windows\CurrentVersion\RunOnce","TavRinUninstall",,"RunDll32 %11%\Advpack.dll,LaunchINFSection C:\My Windows\INF\tvuninst.inf,TavRinUninstall2

[strings]
PRODUCT_TITLE      = "TavRin Personal"
UNINSTALL_PROMPT   = "This will remove TavRin Personal from your computer.  Do you wish to proceed?"
TAVRIN_DIR         = "TavRin"
)inf"),
              script);
    RemoveDirectoryA(destination.c_str());
}

TEST(UninstallScript, WithoutSelfRegisteringFilesTheSectionIsItsHeading)
{
    CInstallWizard wizard(false);
    wizard.settings.title = "Side Bar";
    wizard.settings.files.push_back(payloadFile("tvdownload.exe", "C:\\x", false, "C:\\x\\TVDOWN~1.EXE"));
    wizard.settings.files.push_back(payloadFile("tvcodec.acm", "C:\\x", false, "C:\\x\\TVCODEC.ACM"));
    wizard.settings.files.back().acmReg = true;
    std::string script;
    buildUninstallScript(&wizard, script, "C:\\windows\\INF\\tvuninst.inf");

    EXPECT_NE(std::string::npos, script.find(crlf("\n\n[self.registering.dlls]\n\n[DelTavRinDir]\n")));
    const std::string tail = crlf("[strings]\n"
                                  "PRODUCT_TITLE      = \"Side Bar\"\n"
                                  "UNINSTALL_PROMPT   = \"This will remove Side Bar from your computer.  Do you wish to proceed?\"\n"
                                  "TAVRIN_DIR         = \"TavRin\"\n");
    ASSERT_GE(script.size(), tail.size());
    EXPECT_EQ(tail, script.substr(script.size() - tail.size()));
}

TEST(UninstallScript, CommandLineNamesTheFirstStage)
{
    EXPECT_EQ("rundll32 advpack.dll,LaunchINFSection C:\\My Windows\\INF\\tvuninst.inf,TavRinUninstall",
              uninstallCommandLine("C:\\My Windows\\INF\\tvuninst.inf"));
    const std::string longPath(5000, 'p');
    const std::string command = uninstallCommandLine(longPath.c_str());
    EXPECT_EQ(4095u, command.size());
    EXPECT_EQ("rundll32 advpack.dll,LaunchINFSection pppp", command.substr(0, 42));
}

TEST(RestartScriptWriter, HeaderThenOnePairPerFile)
{
    CInstallWizard wizard(false);
    wizard.settings.destination = "C:\\Program Files\\TavRin";
    copyText(wizard.sourceFolder, "C:\\NoSuchSetupFolder", sizeof wizard.sourceFolder);
    std::string script = "left over";
    startRestartScript(script, wizard);
    EXPECT_EQ(crlf("## TavRin Installation Reboot Script ##\n"
                   "Destination=C:\\Program Files\\TavRin\n"
                   "Source=C:\\NoSuchSetupFolder\n"),
              script);

    // Sources that do not exist have no short form and stand in their long one.
    CInstallFile dll = payloadFile("TAVRIN.DLL", "C:\\Program Files\\TavRin", true, "");
    dll.sourceFolder = "C:\\NoSuchSetupFolder";
    CInstallFile codec = payloadFile("tvcodec.acm", "C:\\windows\\system32\\", false, "");
    codec.acmReg = true;
    codec.sourceFolder = "C:\\NoSuchSetupFolder\\";
    script.clear();
    appendRestartEntry(dll, script);
    appendRestartEntry(codec, script);
    EXPECT_EQ(crlf("copy C:\\NoSuchSetupFolder\\TAVRIN.DLL C:\\Program Files\\TavRin\\TAVRIN.DLL\n"
                   "regsvr32 C:\\Program Files\\TavRin\\TAVRIN.DLL\n"
                   "copy C:\\NoSuchSetupFolder\\tvcodec.acm C:\\windows\\system32\\tvcodec.acm\n"
                   "regsvr32 C:\\windows\\system32\\tvcodec.acm\n"),
              script);

    const std::string deep = "C:\\" + std::string(300, 'd');
    script.clear();
    appendRestartEntry(payloadFile("a.dll", deep, true, ""), script);
    const std::string target = deep.substr(0, MAX_PATH - 1);
    EXPECT_EQ("regsvr32 " + target + "\r\n", script.substr(script.find("regsvr32 ")));
}

TEST(RestartScriptWriter, ReaderReadsWhatTheWriterWrites)
{
    const std::string source = tempFolder("TavRin Setup");
    ASSERT_TRUE(writeFile(source + "\\TAVRIN.DLL", "dll"));
    ASSERT_TRUE(writeFile(source + "\\tvprotocol.dll", "dll"));
    const std::string shortDll = shortName(source + "\\TAVRIN.DLL");
    const std::string shortProtocol = shortName(source + "\\tvprotocol.dll");
    ASSERT_NE("", shortDll);
    ASSERT_EQ(std::string::npos, shortDll.find(' '));
    ASSERT_EQ(std::string::npos, shortProtocol.find(' '));

    CInstallWizard wizard(false);
    wizard.settings.destination = "C:\\Program Files\\Tav Rin";
    copyText(wizard.sourceFolder, source.c_str(), sizeof wizard.sourceFolder);
    std::string script;
    startRestartScript(script, wizard);
    for (const char* name : {"TAVRIN.DLL", "tvprotocol.dll"}) {
        CInstallFile file = payloadFile(name, wizard.settings.destination, true, "");
        file.sourceFolder = source;
        appendRestartEntry(file, script);
    }

    std::string read;
    for (const auto& c : readRestartCommands(script.c_str()))
        read += std::string(1, "DSCR"[c.kind]) + "|" + c.first + "|" + c.second + "\n";
    const std::string target = "C:\\Program Files\\Tav Rin\\";
    EXPECT_EQ("D|C:\\Program Files\\Tav Rin|\nS|" + source + "|\n" +
                  "C|" + shortDll + "|" + target + "TAVRIN.DLL\nR|" + target + "TAVRIN.DLL|\n" +
                  "C|" + shortProtocol + "|" + target + "tvprotocol.dll\nR|" + target + "tvprotocol.dll|\n",
              read);

    DeleteFileA((source + "\\TAVRIN.DLL").c_str());
    DeleteFileA((source + "\\tvprotocol.dll").c_str());
    RemoveDirectoryA(source.c_str());
}

namespace {
const char runOncePath[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";

// Leaves the RunOnce key as the test found it: the TavRin value it held, or no
// key at all when the test had to make one.
struct RunOnceGuard {
    HKEY key = nullptr;
    bool created = false, hadValue = false;
    DWORD type = 0, size = 4096;
    BYTE saved[4096];
    RunOnceGuard()
    {
        if (RegOpenKeyExA(HKEY_CURRENT_USER, runOncePath, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) key = nullptr;
        if (key) hadValue = RegQueryValueExA(key, "TavRin", nullptr, &type, saved, &size) == ERROR_SUCCESS;
        if (key) RegDeleteValueA(key, "TavRin");
    }
    ~RunOnceGuard()
    {
        if (!key) return;
        if (hadValue) RegSetValueExA(key, "TavRin", 0, type, saved, size);
        if (!hadValue) RegDeleteValueA(key, "TavRin");
        RegCloseKey(key);
        if (created) RegDeleteKeyA(HKEY_CURRENT_USER, runOncePath);
    }
};
}  // namespace

TEST(RestartScriptWriter, ScriptFileAndRunOnceValue)
{
    const std::string source = tempFolder("TavRin Restart");
    const std::string scriptPath = source + "\\tavrin.rss";
    ASSERT_TRUE(writeFile(scriptPath, std::string(5000, 'x')));  // an older, longer script
    CInstallWizard wizard(false);
    copyText(wizard.sourceFolder, source.c_str(), sizeof wizard.sourceFolder);
    const std::string script = "## TavRin Installation Reboot Script ##\r\ncopy a b\r\n";

    RunOnceGuard guard;
    if (!guard.key) {
        writeRestartScript(&wizard, script);
        HKEY key;
        EXPECT_NE(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, runOncePath, 0, KEY_READ, &key));  // never created
        guard.created = RegCreateKeyExA(HKEY_CURRENT_USER, runOncePath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                        &guard.key, nullptr) == ERROR_SUCCESS;
        ASSERT_TRUE(guard.created);
    }
    writeRestartScript(&wizard, script);
    EXPECT_EQ(script, readFile(scriptPath));

    char program[MAX_PATH], value[2048] = "";
    ASSERT_NE(0u, GetModuleFileNameA(nullptr, program, sizeof program));
    DWORD size = sizeof value;
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueA(guard.key, nullptr, "TavRin", RRF_RT_REG_SZ, nullptr, value, &size));
    EXPECT_EQ(std::string(program) + " -restart " + scriptPath, value);
    DeleteFileA(scriptPath.c_str());
    RemoveDirectoryA(source.c_str());
}
