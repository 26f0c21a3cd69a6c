#include "wizard/InstallWizard.h"

#include <commctrl.h>
#include <shellapi.h>

#include "BoundedText.h"
#include "Program.h"
#include "SystemLibraries.h"
#include "analysis/InstallExtract.h"
#include "analysis/RequirementChecks.h"
#include "description/PathHelpers.h"
#include "engine/InstallCopyPage.h"
#include "resources/resource.h"
#include "wizard/InstallPage.h"
#include "wizard/Painting.h"

CInstallWizard::CInstallWizard(bool quietRun) : quiet(quietRun) { systemDll::InitCommonControls(); }

CInstallWizard::~CInstallWizard()
{
    for (HGDIOBJ object : {static_cast<HGDIOBJ>(panelBitmap), static_cast<HGDIOBJ>(panelPalette),
                           static_cast<HGDIOBJ>(brandBitmap), static_cast<HGDIOBJ>(brandPalette)})
        if (object) DeleteObject(object);
    for (CInstallPage* page : pages) delete page;
    pages.clear();
    if (removeSourceOnExit && sourceFolder[0]) removeTree(sourceFolder);
}

int CInstallWizard::run()
{
    if (!extractPayload()) return 0;
    readBranding();  // a copy without a trailer, or with a broken one, runs as the plain one
    if (!loadSettings()) return 0;
    // The quiet run installs at once, without pages and without the checks.
    if (quiet) {
        if (auto* copyPage = dynamic_cast<CInstallCopyPage*>(findPage(106))) copyPage->runFilePass(true, this);
        return 1;
    }
    if (!checkRequirements(this)) return 0;
    // The check and the sign-up both carry the sign-up command the description names.
    settings.AccountDetails.CommandAction = settings.regoCommand;
    chooseDetailsForm();
    return showFrame();
}

void CInstallWizard::chooseDetailsForm()
{
    if (equalsNoCase(settings.regoCommand.c_str(), "AddTrial"))
        if (CInstallPage* details = findPage(115)) details->dialogId = 153;
}

int CInstallWizard::showFrame()
{
    return static_cast<int>(DialogBoxParamA(moduleInstance, MAKEINTRESOURCEA(IDD_WIZARD), nullptr,
                                            installDialogProc,
                                            reinterpret_cast<LPARAM>(static_cast<CInstallDialog*>(this))));
}

int CInstallWizard::extractPayload()
{
    CInstallExtract extract(&cabinet);
    INT_PTR result = DialogBoxParamA(moduleInstance, MAKEINTRESOURCEA(IDD_EXTRACT), nullptr,
                                     installDialogProc,
                                     reinterpret_cast<LPARAM>(static_cast<CInstallDialog*>(&extract)));
    copyText(sourceFolder, extract.tempFolder.c_str(), sizeof sourceFolder);
    return result == 1;
}

void CInstallWizard::setDestination(const char* path)
{
    settings.destination = path;
    for (CInstallFile& file : settings.files)
        if (!file.fixedDestination) file.destFolder = path;
}

bool CInstallWizard::addPage(int id, CInstallPage* page)
{
    page->id = id;
    pages.push_back(page);
    return true;
}

CInstallPage* CInstallWizard::findPage(int id)
{
    for (CInstallPage* page : pages)
        if (page->id == id) return page;
    return nullptr;
}

INT_PTR CInstallWizard::dialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == pageShownMessage) {
        if (currentPage >= 0 && currentPage < static_cast<int>(pages.size()))
            pages[currentPage]->onShown(this);
        return 1;
    }
    if (message == WM_NCDESTROY) {
        cancelled = 1;
        return 1;
    }
    return CInstallDialog::dialogProc(message, wParam, lParam);
}

INT_PTR CInstallWizard::onInitDialog()
{
    char path[MAX_PATH];
    joinPath(sourceFolder, settings.panel.c_str(), path, sizeof path);
    if (loadBitmapAndPalette(path, panelBitmap, panelPalette))
        SendDlgItemMessageA(hwnd, IDC_WIZARD_PANEL, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(panelBitmap));
    if (hasLogo() && loadBitmapAndPalette(branding.bitmapPath.c_str(), brandBitmap, brandPalette))
        SendDlgItemMessageA(hwnd, IDC_WIZARD_LOGO, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(brandBitmap));
    if (!pages.empty()) showPage(pages[currentPage]);

    // The first file's version in the title, its commas turned into points.
    char title[256] = "TavRin Installation - ";
    if (!settings.files.empty()) appendText(title, settings.files[0].version.c_str(), sizeof title);
    for (char* p = title; *p; ++p)
        if (*p == ',') *p = '.';
    SetWindowTextA(hwnd, title);
    return 1;
}

namespace {
BOOL CALLBACK expandChild(HWND control, LPARAM wizard)
{
    reinterpret_cast<CInstallWizard*>(wizard)->expandControlText(control);
    return TRUE;
}
}  // namespace

void CInstallWizard::showPage(CInstallPage* page)
{
    LockWindowUpdate(hwnd);
    RECT area;
    HWND placeholder = GetDlgItem(hwnd, IDC_WIZARD_PAGE_AREA);
    GetWindowRect(placeholder, &area);
    MapWindowPoints(nullptr, hwnd, reinterpret_cast<POINT*>(&area), 2);
    page->create(this, hwnd, area.left, area.top, area.right, area.bottom);
    enableBack(page->canGoBack(this));
    enableNext(page->canGoNext(this));

    HWND cancel = GetDlgItem(hwnd, IDCANCEL);
    HWND next = GetDlgItem(hwnd, IDC_WIZARD_NEXT);
    switch (page->closeKind()) {
    case 1:
        SetWindowTextA(cancel, "&Finish");
        finishing = 1;
        // Enter now presses Finish: the default style moves to the Cancel button.
        SendMessageA(cancel, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
        SendMessageA(next, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
        SendMessageA(hwnd, DM_SETDEFID, IDCANCEL, 0);
        break;
    case 2: SetWindowTextA(cancel, "&No"); break;
    default: SetWindowTextA(cancel, "&Cancel"); break;
    }
    if (!page->macrosDone && page->hwnd) {
        EnumChildWindows(page->hwnd, expandChild, reinterpret_cast<LPARAM>(this));
        page->macrosDone = 1;
    }
    LockWindowUpdate(nullptr);
    SetFocus(finishing ? cancel : next);
    pumpMessages();
    pumpMessages();
    PostMessageA(hwnd, pageShownMessage, 0, 0);
}

void CInstallWizard::gotoPage(int index, bool forward)
{
    for (;;) {
        if (index < 0 || index >= static_cast<int>(pages.size())) return;
        int skip = pages[index]->skipCheck(this);
        if (skip == 2) return;
        if (skip != 1) break;
        index += forward ? 1 : -1;
    }
    CInstallPage* shown = currentPage < static_cast<int>(pages.size()) ? pages[currentPage] : nullptr;
    if (shown && shown->hwnd) ShowWindow(shown->hwnd, SW_HIDE);
    currentPage = index;
    showPage(pages[index]);
}

void CInstallWizard::nextPage()
{
    if (currentPage < 0 || currentPage >= static_cast<int>(pages.size())) return;
    CInstallPage* page = pages[currentPage];
    if (!page->onNext(this)) return;
    int target = page->nextPageId(this);
    if (target == -1) return gotoPage(currentPage + 1, true);
    for (size_t i = 0; i < pages.size(); ++i)
        if (pages[i]->id == target) return gotoPage(static_cast<int>(i), true);
    // An id that no page has is taken as an index: it lies beyond the end.
    gotoPage(target, true);
}

void CInstallWizard::previousPage()
{
    if (currentPage < 0 || currentPage >= static_cast<int>(pages.size())) return;
    CInstallPage* page = pages[currentPage];
    if (!page->onBack(this)) return;
    int target = page->previousPageId(this);
    if (target == -1) return gotoPage(currentPage - 1, false);
    for (size_t i = 0; i < pages.size(); ++i)
        if (pages[i]->id == target) return gotoPage(static_cast<int>(i), false);
    gotoPage(target, false);
}

void CInstallWizard::refreshButtons()
{
    if (currentPage < 0 || currentPage >= static_cast<int>(pages.size())) return;
    enableBack(pages[currentPage]->canGoBack(this));
    enableNext(pages[currentPage]->canGoNext(this));
}

void CInstallWizard::enableNext(bool enabled) { EnableWindow(GetDlgItem(hwnd, IDC_WIZARD_NEXT), enabled); }
void CInstallWizard::enableBack(bool enabled) { EnableWindow(GetDlgItem(hwnd, IDC_WIZARD_BACK), enabled); }

void CInstallWizard::lockNavigation(bool locked)
{
    enableNext(!locked);
    enableBack(!locked);
}

INT_PTR CInstallWizard::onCommand(int id, int)
{
    switch (id) {
    case IDCANCEL:
        if (finishing) {
            if (currentPage < static_cast<int>(pages.size())) pages[currentPage]->onNext(this);
            EndDialog(hwnd, 0);
        } else {
            char text[256];
            loadString(IDS_CANCEL_QUESTION, text, sizeof text);
            if (MessageBoxA(hwnd, text, "Abort Install", MB_YESNO | MB_ICONINFORMATION) == IDYES) {
                cancelled = 1;
                EndDialog(hwnd, 1);
            }
        }
        break;
    case IDC_WIZARD_BACK: previousPage(); break;
    case IDC_WIZARD_NEXT: nextPage(); break;
    case IDC_WIZARD_HELP: {
        char address[256];
        loadString(IDS_SUPPORT_ADDRESS, address, sizeof address);
        ShellExecuteA(hwnd, "open", address, nullptr, nullptr, SW_SHOW);
        break;
    }
    default: break;
    }
    return 1;
}
