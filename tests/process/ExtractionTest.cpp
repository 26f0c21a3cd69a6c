// The payload's road from the program's resources to the extraction folder and
// into the setup description, seen from outside as a user's machine sees it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "FolderLink.h"
#include "SetupProcess.h"

namespace {
const char* const productMembers[] = {"tavrin.dll",    "TavRinBH.dll", "tvdownload.exe",
                                      "tvprotocol.dll", "agreement.txt", "readme.txt",
                                      "setup.ini",      "SidePanel.bmp"};
const char* const guid = "CLSID\\{16C7C243-7FA0-11D3-A0E4-0A02B9000000}";


// Names in the temporary folder that a run may leave: tavrin* and tv*.tmp.
std::vector<std::string> leftovers()
{
    std::vector<std::string> names;
    for (const char* pattern : {"tavrin*", "tv*.tmp"}) {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA((tempFolder() + pattern).c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) continue;
        do names.push_back(found.cFileName);
        while (FindNextFileA(search, &found));
        FindClose(search);
    }
    return names;
}

void setDebugOverride(bool on)
{
    if (!on) {
        RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug");
        return;
    }
    HKEY key;
    RegCreateKeyExA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug", 0, nullptr, 0, KEY_ALL_ACCESS,
                    nullptr, &key, nullptr);
    const char rego[] = "http://127.0.0.1:1/rego", import[] = "http://127.0.0.1:1/import";
    RegSetValueExA(key, "RegoServer", 0, REG_SZ, reinterpret_cast<const BYTE*>(rego), sizeof rego);
    RegSetValueExA(key, "ImportServer", 0, REG_SZ, reinterpret_cast<const BYTE*>(import), sizeof import);
    RegCloseKey(key);
}

// A registered server of the product's class: `server` is its file.
void registerServer(const char* server)
{
    if (!server) {
        RegDeleteTreeA(HKEY_CLASSES_ROOT, guid);
        return;
    }
    HKEY key;
    RegCreateKeyExA(HKEY_CLASSES_ROOT, (std::string(guid) + "\\InprocServer32").c_str(), 0, nullptr, 0,
                    KEY_ALL_ACCESS, nullptr, &key, nullptr);
    RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(server),
                   static_cast<DWORD>(strlen(server) + 1));
    RegCloseKey(key);
}

// TMP and TEMP (GetTempPathA's sources) for this process and the runs it starts.
class TemporaryFolderOn {
public:
    explicit TemporaryFolderOn(const std::string& folder)
    {
        for (int i = 0; i < 2; ++i) {
            if (!GetEnvironmentVariableA(names[i], saved[i], MAX_PATH)) saved[i][0] = 0;
            SetEnvironmentVariableA(names[i], folder.c_str());
        }
    }
    ~TemporaryFolderOn()
    {
        for (int i = 0; i < 2; ++i) SetEnvironmentVariableA(names[i], saved[i][0] ? saved[i] : nullptr);
    }

private:
    const char* const names[2] = {"TMP", "TEMP"};
    char saved[2][MAX_PATH];
};

class Extraction : public ::testing::Test {
protected:
    void SetUp() override
    {
        // Quiet runs here go on to install: into a folder that stands.
        removeInstallation();
        CreateDirectoryA(installFolder.c_str(), nullptr);
        setDebugOverride(false);
        registerServer(nullptr);
        for (const std::string& name : leftovers()) {
            std::string path = tempFolder() + name;
            RemoveDirectoryA(path.c_str()) || DeleteFileA(path.c_str());
        }
    }
    void TearDown() override
    {
        setDebugOverride(false);
        removeInstallation();
    }
};
}  // namespace

TEST_F(Extraction, UnpacksEveryMemberLogsItAndRemovesTheFolderAtTheEnd)
{
    // The override box stops the run inside the load, while the folder stands.
    setDebugOverride(true);
    SetupProcess setup("/Q");
    HWND box = setup.window("Server Override");
    ASSERT_TRUE(box);
    std::string folder = tempFolder() + "tavrin\\";
    for (const char* member : productMembers) EXPECT_TRUE(exists(folder + member)) << member;
    EXPECT_EQ(uidriver::messageText(box),
              "Registration Server: http://127.0.0.1:1/rego\nImport Server: http://127.0.0.1:1/import");
    uidriver::pressButton(box, IDOK);
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_TRUE(leftovers().empty()) << leftovers()[0];

    std::string log = readLog();
    size_t at = log.find("- Extracting Install Files\r\n");
    ASSERT_NE(at, std::string::npos);
    at = log.find("- Extracting Data\r\n", at);
    ASSERT_NE(at, std::string::npos);
    for (const char* member : productMembers) {
        at = log.find(std::string("- Expanding file ") + member + "\r\n", at);
        EXPECT_NE(at, std::string::npos) << member << " missing or out of cabinet order";
    }
    EXPECT_NE(log.find("- Installation Complete"), std::string::npos);
}

TEST_F(Extraction, TakenNamesLeadToTheNextNumber)
{
    ASSERT_TRUE(CreateDirectoryA((tempFolder() + "tavrin").c_str(), nullptr));
    writeFile(tempFolder() + "tavrin1", "a file counts as taken too");
    // So does a link that leads nowhere, which Wine does not list at all: only
    // the folder's creation can tell that the name is taken.
    ASSERT_TRUE(CreateDirectoryA((tempFolder() + "tvgone").c_str(), nullptr));
    FolderLink dangling(tempFolder() + "tavrin2", tempFolder() + "tvgone");
    ASSERT_TRUE(dangling.listsAsJunction());
    ASSERT_TRUE(RemoveDirectoryA((tempFolder() + "tvgone").c_str()));
    setDebugOverride(true);
    SetupProcess setup("/Q");
    ASSERT_TRUE(setup.window("Server Override"));
    EXPECT_TRUE(exists(tempFolder() + "tavrin3\\setup.ini"));
    answerBox(setup, "Server Override");
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_FALSE(exists(tempFolder() + "tavrin3"));
    EXPECT_TRUE(exists(tempFolder() + "tavrin") && exists(tempFolder() + "tavrin1"));
}

TEST_F(Extraction, BrokenPayloadsSayCorruptInstallationAndLeaveNothing)
{
    for (const char* variant : {"corrupt", "empty", "nosetupini", "missingmember"}) {
        SCOPED_TRACE(variant);
        SetupProcess setup("", variantPath(variant));
        EXPECT_EQ(answerBox(setup, "Corrupt Installation"),
                  "The installation has missing files or is corrupt.");
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_TRUE(leftovers().empty()) << leftovers()[0];
        EXPECT_EQ(readFlag(), "0");
    }
}

TEST_F(Extraction, FailedWriteSaysCorruptInstallationAndLeavesNothing)
{
    // A drive of a few pages that scripts/run-tests.sh mounts where the machine allows it.
    const char* drive = std::getenv("TAVRIN_SMALL_DRIVE");
    if (!drive) GTEST_SKIP() << "no small drive (TAVRIN_SMALL_DRIVE) on this machine";
    emptyFolder(drive);
    TemporaryFolderOn small(std::string(drive) + "\\");
    // The product's cabinet fits there and its members do not; the large
    // variant's cabinet does not fit itself.
    for (const std::string& program : {setupPath(), variantPath("large")}) {
        SCOPED_TRACE(program);
        SetupProcess setup("", program);
        ASSERT_TRUE(setup.window("Corrupt Installation"));
        EXPECT_TRUE(leftovers().empty()) << leftovers()[0] << " is left while the user is told";
        EXPECT_EQ(answerBox(setup, "Corrupt Installation"), "The installation has missing files or is corrupt.");
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_TRUE(leftovers().empty()) << leftovers()[0];
    }
}

TEST_F(Extraction, NewerRegisteredServerIsReplacedOnlyWhenTheUserSaysYes)
{
    // Wine's own wininet.dll stands in for a newer build of the product's server.
    char server[MAX_PATH];
    GetSystemDirectoryA(server, sizeof server);
    lstrcatA(server, "\\wininet.dll");
    registerServer(server);
    // A browser too old for the product: its box shows that a run went on to the checks.
    HKEY browser;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Internet Explorer", 0, KEY_ALL_ACCESS, &browser);
    char version[256] = "";
    DWORD size = sizeof version;
    RegQueryValueExA(browser, "Version", nullptr, nullptr, reinterpret_cast<BYTE*>(version), &size);
    RegSetValueExA(browser, "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>("4.0"), 4);

    SetupProcess refused("");
    EXPECT_EQ(answerBox(refused, "Found Newer Version", IDNO),
              "A newer version has been found. Do you wish to override this version?");
    EXPECT_EQ(refused.wait(), 0) << "No ends the run before the checks";
    EXPECT_TRUE(leftovers().empty());

    SetupProcess accepted("");
    EXPECT_FALSE(answerBox(accepted, "Found Newer Version", IDYES).empty());
    EXPECT_FALSE(answerBox(accepted, "Incorrect Version").empty());
    EXPECT_EQ(accepted.wait(), 0);
    EXPECT_TRUE(leftovers().empty());

    // An older registered server (a missing file reads 0.0.0.0) asks nothing.
    registerServer((tempFolder() + "no-such-server.dll").c_str());
    SetupProcess older("/Q");
    EXPECT_EQ(older.wait(), 0);

    RegSetValueExA(browser, "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(version),
                   static_cast<DWORD>(strlen(version) + 1));
    RegCloseKey(browser);
}
