#pragma once
#include <windows.h>

#include <string>
#include <vector>

// Acts as a user on the windows of another program (or another thread): finds
// a dialog or message box by its caption, reads its texts, presses its buttons.
// Buttons are pressed with PostMessage: SendMessage would block while the
// target shows a modal box of its own.
namespace uidriver {

struct WindowQuery {
    std::string caption;     // exact caption of a visible top-level window
    DWORD processId = 0;     // 0: any process
    bool ownedOnly = false;  // true: only a window that has an owner (a message box over a dialog)
};

HWND findWindow(const WindowQuery& query);
// Polls every 50 ms until the window appears or the time is up (null then).
HWND waitForWindow(const WindowQuery& query, DWORD timeoutMs);
// Polls until no visible window matches; false when the time is up first.
bool waitForWindowGone(const WindowQuery& query, DWORD timeoutMs);

std::string windowText(HWND window);
std::string controlText(HWND dialog, int id);
// The text of a message box (its static control 0xFFFF).
std::string messageText(HWND box);

struct Control {
    int id;
    std::string className;
    std::string text;
    bool visible;
    bool enabled;
    RECT rect;  // in screen coordinates
};
std::vector<Control> listControls(HWND dialog);

// Presses the button with this id (BN_CLICKED to the dialog).
bool pressButton(HWND dialog, int id);
// Presses the button whose text, without '&', equals `label` (case-insensitive).
bool pressButtonByLabel(HWND dialog, const std::string& label);
// Types into an edit control.
bool setControlText(HWND dialog, int id, const std::string& text);

}  // namespace uidriver
