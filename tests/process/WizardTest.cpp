// The wizard on the screen, driven as a user drives it: the frame, the plain
// pages, the folder dialog, and the frame's links.
#include <gtest/gtest.h>

#include <memory>

#include "SetupProcess.h"

namespace {
using uidriver::controlText;
using uidriver::pressButton;

// A dialog of the frame's process showing a control with this text.
bool showsText(HWND frame, const std::string& text)
{
    for (const auto& control : uidriver::listControls(frame))
        if (control.visible && control.text == text) return true;
    return false;
}

bool enabled(HWND frame, int id) { return IsWindowEnabled(GetDlgItem(frame, id)) != FALSE; }

struct PageSearch {
    int controlId;
    HWND page;
};

BOOL CALLBACK findPage(HWND child, LPARAM parameter)
{
    auto* search = reinterpret_cast<PageSearch*>(parameter);
    if (GetDlgCtrlID(child) != search->controlId || !IsWindowVisible(child)) return TRUE;
    search->page = GetParent(child);
    return FALSE;
}

// The page on show that holds this control (pages are child dialogs of the frame).
HWND pageWith(HWND frame, int controlId)
{
    PageSearch search = {controlId, nullptr};
    EnumChildWindows(frame, findPage, reinterpret_cast<LPARAM>(&search));
    return search.page;
}

// Waits until the frame shows a page with this control (pages come up through posted messages).
HWND waitForPage(HWND frame, int controlId)
{
    for (int i = 0; i < 400; ++i) {
        if (HWND page = pageWith(frame, controlId)) return page;
        Sleep(50);
    }
    return nullptr;
}

bool waitForText(HWND frame, const std::string& text)
{
    for (int i = 0; i < 400; ++i) {
        if (showsText(frame, text)) return true;
        Sleep(50);
    }
    return false;
}

class Wizard : public ::testing::Test {
protected:
    void SetUp() override
    {
        removeInstallation();  // a fresh machine: no update page
        // What the shell opens reaches the recorder, which inherits this from the run.
        links = tempFolder() + "tvlinks.txt";
        DeleteFileA(links.c_str());
        SetEnvironmentVariableA("TAVRIN_RECORDER_OUT", links.c_str());
        setup.reset(new SetupProcess(""));
        frame = setup->window(wizardCaption, 20000);
        ASSERT_TRUE(frame) << "no frame with the first file's version, commas turned into points";
    }
    void TearDown() override
    {
        if (setup->wait(0) == -1) cancelWizard(*setup);
        EXPECT_EQ(setup->wait(), 0);
        EXPECT_EQ(readFlag(), "0");
        EXPECT_EQ(GetFileAttributesA((tempFolder() + "tavrin").c_str()), INVALID_FILE_ATTRIBUTES)
            << "the extraction folder outlives the run";
    }
    std::unique_ptr<SetupProcess> setup;
    HWND frame = nullptr;
    std::string links;
};
}  // namespace

TEST_F(Wizard, WelcomeLeadsPastTheAgreementToTheFolderAndBack)
{
    ASSERT_TRUE(waitForText(frame, "Welcome to the TavRin Personal Installation program."));
    EXPECT_FALSE(enabled(frame, 1000)) << "the welcome page has no Back";
    EXPECT_EQ(controlText(frame, IDCANCEL), "&Cancel");

    // Without a new account the agreement passes itself over.
    pressButton(frame, 1001);
    ASSERT_TRUE(keepExistingAccount(frame));
    HWND page = waitForPage(frame, 1005);
    ASSERT_TRUE(page);
    EXPECT_EQ(controlText(page, 1005), "C:\\Program Files\\TavRin");
    EXPECT_EQ(controlText(page, 1004), "Setup will install TavRin Personal in the following directory.");
    EXPECT_TRUE(enabled(frame, 1000));

    uidriver::setControlText(page, 1005, "C:\\typed by the user");
    // Browse, then Cancel in the folder dialog: the text stays as it was.
    PostMessageA(page, WM_COMMAND, MAKEWPARAM(1006, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(page, 1006)));
    HWND browse = setup->window("Browse for Folder");
    ASSERT_TRUE(browse) << "no folder dialog";
    EXPECT_TRUE(showsText(browse, "Select Destination Folder"));
    uidriver::pressButton(browse, IDCANCEL);
    uidriver::WindowQuery gone{"Browse for Folder", setup->id(), false};
    EXPECT_TRUE(uidriver::waitForWindowGone(gone, 5000));
    EXPECT_EQ(controlText(page, 1005), "C:\\typed by the user");
    // Back walks past the account pages to the choice, which keeps its radio.
    pressButton(frame, 1000);
    HWND choice = waitForPage(frame, 1017);
    ASSERT_TRUE(choice);
    EXPECT_TRUE(showsText(choice, "I already have an account"));
    EXPECT_EQ(IsDlgButtonChecked(choice, 1031), BST_CHECKED);
    pressButton(frame, 1001);
    ASSERT_EQ(waitForPage(frame, 1005), page) << "a page's window is made once and kept";
    EXPECT_EQ(controlText(page, 1005), "C:\\typed by the user");
}

TEST_F(Wizard, HelpAndTheSiteLinkOpenTheirAddresses)
{
    // The shell opens web addresses through the http handler: the recorder plays the browser.
    HKEY key;
    RegCreateKeyExA(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &key, nullptr);
    char old[1024] = "";
    DWORD size = sizeof old;
    RegQueryValueExA(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(old), &size);
    std::string command = "\"" + testFolder() + "recorder.exe\" \"%1\"";
    RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                   static_cast<DWORD>(command.size() + 1));

    pressButton(frame, 1064);
    RECT cancel;
    GetWindowRect(GetDlgItem(frame, IDCANCEL), &cancel);
    RECT client;
    GetClientRect(frame, &client);
    POINT point = {client.right - 15, 0};
    POINT top = {cancel.left, cancel.top};
    ScreenToClient(frame, &top);
    point.y = top.y - 21;
    PostMessageA(frame, WM_MOUSEMOVE, 0, MAKELPARAM(point.x, point.y));
    PostMessageA(frame, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(point.x, point.y));
    std::string seen;
    for (int i = 0; i < 400 && (seen.find("example/\"") == std::string::npos ||
                                seen.find("CustomerSupport") == std::string::npos); ++i) {
        Sleep(50);
        seen = readFile(links);
    }
    EXPECT_NE(seen.find("http://www.tavrin.example/CustomerSupport"), std::string::npos) << seen;
    EXPECT_NE(seen.find("http://www.tavrin.example/\""), std::string::npos) << seen;
    RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(old), static_cast<DWORD>(strlen(old) + 1));
    RegCloseKey(key);
}
