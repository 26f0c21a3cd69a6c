#pragma once
#include <windows.h>

#include <string>

// Base of every dialog of the program. The one dialog procedure finds the
// object through the window's user data and turns messages into hooks; a
// concrete dialog overrides hooks and never sees a raw message.
class CInstallDialog {
public:
    HWND hwnd = nullptr;

    virtual void attach(HWND window);
    virtual INT_PTR dialogProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual INT_PTR onPaint(HWND window);
    virtual void destroy();
    virtual INT_PTR onCommand(int id, int notifyCode);
    virtual INT_PTR onInitDialog();
    virtual INT_PTR onClose();
    virtual INT_PTR onMouseMove(unsigned x, unsigned y);
    virtual INT_PTR onLButtonDown(unsigned x, unsigned y, WPARAM keys);
    virtual INT_PTR onNotify(WPARAM wParam, LPARAM lParam);
    virtual void onDlgReady();
    virtual INT_PTR onCtlColorStatic(HDC deviceContext, HWND control);
    virtual INT_PTR onDrawItem(WPARAM controlId, LPARAM drawItem);
    virtual void onTimer(UINT_PTR timerId);

    // Fires onDlgReady once, 100 ms from now.
    void startReadyTimer();

protected:
    ~CInstallDialog() = default;
};

INT_PTR CALLBACK installDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// Dispatch every queued message; long work on the main thread calls these
// between its steps. The second says false if WM_QUIT was among them.
bool pumpMessages();
bool pumpMessagesCheckingQuit();

// Dialog 150: a long text (a server's reply) in a scrolling read-only edit.
class CInstallErrorListDialog : public CInstallDialog {
public:
    CInstallErrorListDialog(HWND parent, const std::string& text);
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;

private:
    std::string text;
};

// `text` with a CR LF put into every line longer than 256 bytes, behind a
// blank where one is near: what the error list shows.
std::string withShortLines(const std::string& text);

// The one road by which an error reaches the user: a log line, then a message
// box, or the error list for text of unknown length. Empty text does nothing.
void ERRORMSG(const char* text, bool useList);

const UINT_PTR readyTimerId = 1024;
