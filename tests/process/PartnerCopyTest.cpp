// A partner's copy, stamped by tools/stamp in the build (variant "partner"):
// its logo on the frame, the hand over it, the partner's link on a click, and
// the partner cookie it leaves for the service's host.
#include <gtest/gtest.h>

#include <vector>

#include "SetupProcess.h"
#include "account/CookieStore.h"

namespace {
// For the length of a test the shell opens web addresses with the recorder,
// which writes them to `output`.
class WebLinkStandIn {
public:
    explicit WebLinkStandIn(const std::string& output)
    {
        RegCreateKeyExA(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr);
        DWORD size = sizeof old;
        RegQueryValueExA(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(old), &size);
        set(("\"" + testFolder() + "recorder.exe\" \"%1\"").c_str());
        DeleteFileA(output.c_str());
        SetEnvironmentVariableA("TAVRIN_RECORDER_OUT", output.c_str());
    }
    ~WebLinkStandIn()
    {
        set(old);
        RegCloseKey(key);
    }

private:
    void set(const char* command)
    {
        RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(command), lstrlenA(command) + 1);
    }
    HKEY key = nullptr;
    char old[1024] = "";
};

// The colours of the screen in `rect` (screen coordinates), row by row.
std::vector<COLORREF> screenPixels(const RECT& rect)
{
    int width = rect.right - rect.left, height = rect.bottom - rect.top;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
    GdiFlush();
    std::vector<COLORREF> pixels;
    for (int i = 0; i < width * height; ++i) {
        DWORD p = static_cast<DWORD*>(bits)[i];
        pixels.push_back(RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF));
    }
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return pixels;
}

// The mouse as a user moves it: the input reaches the window under it.
void mouseInput(int x, int y, DWORD flags)
{
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = MulDiv(x, 65535, GetSystemMetrics(SM_CXSCREEN) - 1);
    input.mi.dy = MulDiv(y, 65535, GetSystemMetrics(SM_CYSCREEN) - 1);
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | flags;
    SendInput(1, &input, sizeof input);
}

HCURSOR currentCursor()
{
    CURSORINFO info = {};
    info.cbSize = sizeof info;
    GetCursorInfo(&info);
    return info.hCursor;
}

// The cursor once the mouse rests at (x, y): the same handle read three times
// in a row. The window under the mouse sets it when it has taken the move in,
// which on a loaded machine takes a while.
HCURSOR restingCursor(int x, int y)
{
    mouseInput(x, y, 0);
    HCURSOR last = nullptr;
    for (int i = 0, same = 0; i < 40 && same < 3; ++i) {
        Sleep(100);
        HCURSOR seen = currentCursor();
        same = seen == last ? same + 1 : 0;
        last = seen;
    }
    return last;
}

// The cursor while the mouse moves to and fro by a pixel at (x, y), as a
// hand does, until it is (or, with `same` false, is not) `than`; at most 5 s.
// The frame sets its cursor on each move, and the dialog's own handling of
// WM_SETCURSOR may put the class arrow back in between.
HCURSOR movingCursor(int x, int y, HCURSOR than, bool same)
{
    HCURSOR seen = nullptr;
    for (int i = 0; i < 100; ++i) {
        mouseInput(x + i % 2, y, 0);
        Sleep(50);
        if (((seen = currentCursor()) == than) == same) break;
    }
    return seen;
}

const COLORREF border = RGB(255, 0, 255), field = RGB(0, 128, 0);
const char* const serviceHost = "http://www.tavrin.example";
}  // namespace

TEST(PartnerCopy, LogoOnTheFrameOpensThePartnersLink)
{
    removeInstallation();
    // The partner cookie goes to the host of the product's description.
    RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug");
    const std::string opened = tempFolder() + "tvpartner.txt";
    WebLinkStandIn shell(opened);
    SetupProcess setup("", variantPath("partner"));
    HWND frame = setup.window(wizardCaption, 20000);
    ASSERT_TRUE(frame) << "the partner's copy runs as the product";
    RECT logo;
    GetWindowRect(GetDlgItem(frame, 1028), &logo);
    // The mouse rests on the frame beside the logo while the frame first paints.
    mouseInput(logo.right + 40, (logo.top + logo.bottom) / 2, 0);
    Sleep(500);
    ASSERT_EQ(logo.right - logo.left, 32) << "the logo's static takes the logo's size";
    ASSERT_EQ(logo.bottom - logo.top, 24);
    std::vector<COLORREF> pixels = screenPixels(logo);
    int fieldPixels = 0, borderPixels = 0;
    for (COLORREF pixel : pixels) fieldPixels += pixel == field, borderPixels += pixel == border;
    EXPECT_EQ(fieldPixels, 28 * 20) << "the logo's green field is on the frame";
    EXPECT_EQ(borderPixels, 32 * 24 - 28 * 20) << "and its border round it";

    int x = (logo.left + logo.right) / 2, y = (logo.top + logo.bottom) / 2;
    // Cursor handles are the process's own, so the frame's arrow is told apart
    // by place; the first reading after the mouse entered the frame may still
    // be another process's.
    restingCursor(logo.right + 40, y);
    HCURSOR arrow = restingCursor(logo.right + 60, y);
    EXPECT_NE(movingCursor(x, y, arrow, false), arrow) << "the hand over the logo";
    EXPECT_EQ(movingCursor(logo.right + 60, y, arrow, true), arrow) << "the arrow again when the mouse leaves it";

    mouseInput(x, y, MOUSEEVENTF_LEFTDOWN);
    mouseInput(x, y, MOUSEEVENTF_LEFTUP);
    std::string seen;
    for (int i = 0; i < 400 && seen.empty(); ++i, Sleep(50)) seen = readFile(opened);
    EXPECT_NE(seen.find("http://www.partner.example/from-setup"), std::string::npos)
        << "a click on the logo opens the partner's link: " << seen;

    cancelWizard(setup);
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_FALSE(exists(tempFolder() + "tavrin")) << "the logo goes with the extraction folder";

    char cookie[256] = "";
    DWORD size = sizeof cookie;
    EXPECT_TRUE(readCookie(serviceHost, "TavRinPartner", cookie, size));
    EXPECT_STREQ("TavRinPartner=Partner*4242*17*0*0", cookie);
    storeCookie(serviceHost, "TavRinPartner=; expires=Thu, 01-Jan-1970 00:00:00 GMT");
}
