#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "BoundedText.h"
#include "UnitFiles.h"
#include "description/PathHelpers.h"
#include "engine/RestartScript.h"
#include "wizard/InstallWizard.h"

namespace {
// "D|first|second" per command: Destination, Source, Copy, Regsvr32.
std::string describe(const std::vector<CRestartCommand>& commands)
{
    std::string text;
    for (const auto& c : commands) text += std::string(1, "DSCR"[c.kind]) + "|" + c.first + "|" + c.second + "\n";
    return text;
}
}  // namespace

TEST(RestartScript, ReadsTheFourCommandsInOrder)
{
    EXPECT_EQ("D|C:\\Program Files\\TavRin|\n"
              "S|C:\\Temp\\TavRin Setup|\n"
              "C|C:\\Temp\\a.dll|C:\\Program Files\\TavRin\\a.dll\n"
              "R|C:\\Program Files\\TavRin\\a.dll|\n"
              "R||\n"
              "C||target only\n"
              "C|x|y z\n",
              describe(readRestartCommands("Destination=C:\\Program Files\\TavRin\r\n"
                                           "source=C:\\Temp\\TavRin Setup\r\n\r\n"
                                           "copy C:\\Temp\\a.dll C:\\Program Files\\TavRin\\a.dll\n"
                                           "REGSVR32 C:\\Program Files\\TavRin\\a.dll\r"
                                           "rem nothing to do\r\n"
                                           "copy nospace\r\n"
                                           "copy\r\n"
                                           "regsvr32\r\n"
                                           "COPY  target only\n\n\n"
                                           "copy x y z")));
}

TEST(RestartScriptWriter, WritesWhatTheReaderReads)
{
    const std::string source = tempFolder("TavRin Setup");  // a blank, as a user name may put one there
    ASSERT_TRUE(writeFile(source + "\\TAVRIN.DLL", "dll"));
    char shortDll[MAX_PATH] = "";
    GetShortPathNameA((source + "\\TAVRIN.DLL").c_str(), shortDll, sizeof shortDll);
    ASSERT_NE(0, shortDll[0]);
    ASSERT_EQ(nullptr, strchr(shortDll, ' '));

    CInstallWizard wizard(false);
    wizard.settings.destination = "C:\\Program Files\\Tav Rin";
    copyText(wizard.sourceFolder, source.c_str(), sizeof wizard.sourceFolder);
    std::string script = "left over";
    startRestartScript(script, wizard);
    CInstallFile dll, codec;
    dll.fileName = "TAVRIN.DLL", dll.autoReg = true;
    dll.destFolder = wizard.settings.destination, dll.sourceFolder = source;
    appendRestartEntry(dll, script);
    // A source that does not exist has no short form and stands in its long one.
    codec.fileName = "tvcodec.acm", codec.acmReg = true;
    codec.destFolder = "C:\\windows\\system32\\", codec.sourceFolder = "C:\\NoSuchSetupFolder\\";
    appendRestartEntry(codec, script);
    const std::string dllTarget = "C:\\Program Files\\Tav Rin\\TAVRIN.DLL";
    const std::string codecSource = "C:\\NoSuchSetupFolder\\tvcodec.acm";
    const std::string codecTarget = "C:\\windows\\system32\\tvcodec.acm";
    EXPECT_EQ("## TavRin Installation Reboot Script ##\r\nDestination=C:\\Program Files\\Tav Rin\r\nSource=" + source +
                  "\r\ncopy " + shortDll + " " + dllTarget + "\r\nregsvr32 " + dllTarget + "\r\ncopy " + codecSource +
                  " " + codecTarget + "\r\nregsvr32 " + codecTarget + "\r\n",
              script);
    EXPECT_EQ("D|C:\\Program Files\\Tav Rin|\nS|" + source + "|\nC|" + shortDll + "|" + dllTarget + "\nR|" + dllTarget +
                  "|\nC|" + codecSource + "|" + codecTarget + "\nR|" + codecTarget + "|\n",
              describe(readRestartCommands(script.c_str())));
    DeleteFileA((source + "\\TAVRIN.DLL").c_str());
    RemoveDirectoryA(source.c_str());
}

TEST(RestartScriptWriter, ScriptFileAndRunOnceValue)
{
    const char runOncePath[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
    const std::string source = tempFolder("TavRin Restart"), scriptPath = source + "\\tavrin.rss";
    ASSERT_TRUE(writeFile(scriptPath, std::string(5000, 'x')));  // an older, longer script
    CInstallWizard wizard(false);
    copyText(wizard.sourceFolder, source.c_str(), sizeof wizard.sourceFolder);
    const std::string script = "## TavRin Installation Reboot Script ##\r\ncopy a b\r\n";

    HKEY key;
    const bool hadKey = RegOpenKeyExA(HKEY_CURRENT_USER, runOncePath, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS;
    if (!hadKey) {  // (as in a new Wine prefix) the program does not make the key
        writeRestartScript(&wizard, script);
        EXPECT_NE(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, runOncePath, 0, KEY_READ, &key));
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, runOncePath, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &key, nullptr));
    }
    writeRestartScript(&wizard, script);
    EXPECT_EQ(script, readFile(scriptPath));
    char program[MAX_PATH], value[2048] = "";
    ASSERT_NE(0u, GetModuleFileNameA(nullptr, program, sizeof program));
    DWORD size = sizeof value;
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueA(key, nullptr, "TavRin", RRF_RT_REG_SZ, nullptr, value, &size));
    // Short forms: the folder's blank would cut the line where Windows starts it.
    EXPECT_EQ(shortPathOf(program) + " -restart " + shortPathOf(scriptPath.c_str()), value);
    RegDeleteValueA(key, "TavRin");
    RegCloseKey(key);
    if (!hadKey) RegDeleteKeyA(HKEY_CURRENT_USER, runOncePath);
    DeleteFileA(scriptPath.c_str());
    RemoveDirectoryA(source.c_str());
}
