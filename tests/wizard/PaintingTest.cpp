// The frame's hand-made look, read back from its pixels: the divider, the
// sunken frame round the side panel, and the link's underline under the mouse.
#include <gtest/gtest.h>

#include "WizardTestSupport.h"

namespace {
using namespace wizardtest;

int linkPixels(const Capture& shot, const RECT& link)
{
    int blue = 0;
    // The underline runs from right - 1 leftwards and stops short of left.
    for (int x = link.left + 1; x <= link.right - 1; ++x) blue += shot.at(x, link.bottom - 2) == RGB(0, 0, 255);
    return blue;
}
}  // namespace

TEST(Painting, DividerPanelFrameAndLinkUnderline)
{
    CInstallWizard wizard(false);
    wizard.addPage(100, new CInstallPage(116));
    CTestThread user([&] {
        for (int i = 0; i < 200 && !wizard.hwnd; ++i) Sleep(25);
        HWND frame = wizard.hwnd;
        ASSERT_TRUE(frame);
        Sleep(400);
        RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Sleep(200);
        Capture shot = capture(frame);
        COLORREF shadow = GetSysColor(COLOR_BTNSHADOW), highlight = GetSysColor(COLOR_BTNHIGHLIGHT);

        int divider = clientRectOf(frame, IDCANCEL).top - 15;
        for (int x : {shot.width / 2, shot.width - 11}) {
            EXPECT_EQ(shot.at(x, divider), shadow) << "divider at x " << x;
            EXPECT_EQ(shot.at(x + 1, divider + 1), highlight) << "divider's light edge at x " << x;
        }
        EXPECT_NE(shot.at(shot.width - 5, divider), shadow) << "the divider stops 10 pixels short of the edge";

        RECT panel = clientRectOf(frame, 1002);
        int midY = (panel.top + panel.bottom) / 2, midX = (panel.left + panel.right) / 2;
        EXPECT_EQ(shot.at(panel.left - 1, midY), shadow);
        EXPECT_EQ(shot.at(midX, panel.top - 1), shadow);
        EXPECT_EQ(shot.at(panel.right, midY), highlight);
        EXPECT_EQ(shot.at(midX, panel.bottom), highlight);

        RECT link = wizard.linkRect;
        ASSERT_GT(link.right - link.left, 20);
        EXPECT_LT(linkPixels(shot, link), link.right - link.left - 1) << "no underline before the mouse comes";
        SendMessageA(frame, WM_MOUSEMOVE, 0, MAKELPARAM(link.left + 3, link.top + 3));
        UpdateWindow(frame);
        Sleep(200);
        EXPECT_EQ(linkPixels(capture(frame), link), link.right - link.left - 1) << "underline under the mouse";
        SendMessageA(frame, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
        UpdateWindow(frame);
        Sleep(200);
        EXPECT_LT(linkPixels(capture(frame), link), link.right - link.left - 1) << "underline gone with the mouse";
        PostMessageA(frame, WM_COMMAND, IDCANCEL, 0);
        for (int i = 0; i < 100; ++i) {
            HWND box = FindWindowA(nullptr, "Abort Install");
            if (box) {
                PostMessageA(box, WM_COMMAND, IDYES, 0);
                break;
            }
            Sleep(30);
        }
    });
    wizard.showFrame();
    user.join();
}
