#pragma once
#include <windows.h>

#include "wizard/InstallDialog.h"

class CInstallWizard;

// A wizard page: a modeless child dialog with fixed answers to the frame's
// questions. The defaults make a plain page in a straight line; a page
// overrides only what differs.
class CInstallPage : public CInstallDialog {
public:
    explicit CInstallPage(int dialogId) : dialogId(dialogId) {}
    virtual ~CInstallPage();

    // Makes the window at the first showing, then places and shows it.
    virtual void create(CInstallWizard* wizard, HWND parent, int left, int top, int right, int bottom);
    virtual int canGoNext(CInstallWizard* wizard);
    virtual int canGoBack(CInstallWizard* wizard);
    // 0: the frame's Cancel button reads "&Cancel"; 1 "&Finish"; 2 "&No".
    virtual int closeKind();
    // -1: the neighbour in the page order; otherwise a page id.
    virtual int nextPageId(CInstallWizard* wizard);
    virtual int previousPageId(CInstallWizard* wizard);
    // 0 shows the page, 1 passes over it, 2 stops the walk where it is.
    virtual int skipCheck(CInstallWizard* wizard);
    virtual int onNext(CInstallWizard* wizard);
    virtual int onBack(CInstallWizard* wizard);
    // After each showing, once the page stands on the screen.
    virtual void onShown(CInstallWizard* wizard);

    int dialogId;
    int macrosDone = 0;
    int id = 0;
    CInstallWizard* wizard = nullptr;
};

// Base of the account form pages: every static drawn by the page, the label of
// a field found wanting in bold once Next was pressed, the red star of the
// note, and control 1068 drawn and driven as a link.
class CInstallFormPage : public CInstallPage {
public:
    using CInstallPage::CInstallPage;
    INT_PTR onInitDialog() override;
    INT_PTR onDrawItem(WPARAM controlId, LPARAM drawItem) override;
    INT_PTR onMouseMove(unsigned x, unsigned y) override;
    INT_PTR onLButtonDown(unsigned x, unsigned y, WPARAM keys) override;
    INT_PTR onCtlColorStatic(HDC deviceContext, HWND control) override;
    // For a label: whether the field it names was acceptable at the last Next.
    virtual int isFieldValid(int controlId);

    // Draws one static: bold when its field was found wanting. Returns 1.
    int drawStatic(int controlId, const DRAWITEMSTRUCT& item);
    // Repaints the whole page, so that the labels show the state just checked.
    void repaint();

    // Set by the first press of Next and never cleared: from then on the
    // labels tell which fields were wanting.
    int validated = 0;
};

const UINT pageShownMessage = 3073;
