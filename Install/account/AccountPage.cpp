#include "account/AccountPage.h"

#include <wininet.h>

#include "InstallLog.h"
#include "Program.h"
#include "SystemLibraries.h"
#include "account/FavoritesImport.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"
#include "wizard/Painting.h"

namespace {
const int tileWidth = 86, tileHeight = 20;
}

CInstallAccountPage::CInstallAccountPage() : CInstallPage(IDD_PAGE_ACCOUNT)
{
    barBitmap = static_cast<HBITMAP>(
        LoadImageA(moduleInstance, MAKEINTRESOURCEA(IDB_ACCOUNT_BAR), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
}

CInstallAccountPage::~CInstallAccountPage()
{
    if (barBitmap) DeleteObject(barBitmap);
}

int CInstallAccountPage::skipCheck(CInstallWizard* owner)
{
    return owner->settings.createAccount == 0 && owner->settings.importRequested == 0 ? 1 : 0;
}

INT_PTR CInstallAccountPage::onInitDialog()
{
    // The bar runs for the life of the window, whether or not work goes on.
    SetTimer(hwnd, barTimerId, 50, nullptr);
    return 1;
}

RECT CInstallAccountPage::barRect()
{
    RECT rect = {0, 0, 0, 0};
    if (HWND frame = GetDlgItem(hwnd, IDC_ACCOUNT_BAR)) {
        GetWindowRect(frame, &rect);
        MapWindowPoints(nullptr, hwnd, reinterpret_cast<POINT*>(&rect), 2);
    }
    return rect;
}

void CInstallAccountPage::onTimer(UINT_PTR timerId)
{
    if (timerId != barTimerId) return;
    RECT rect = barRect();
    int width = rect.right - rect.left;
    if (++barOffset > width + width % tileWidth) barOffset = 0;
    InvalidateRect(hwnd, &rect, FALSE);
}

INT_PTR CInstallAccountPage::onPaint(HWND)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    RECT rect = barRect();
    IntersectClipRect(dc, rect.left, rect.top, rect.right, rect.bottom);
    // Tiles from on or before the left edge: they seem to scroll to the right.
    int x = rect.left + barOffset;
    if (x > rect.left) x -= (x - rect.left + tileWidth - 1) / tileWidth * tileWidth;
    if (barBitmap)
        for (; x < rect.right; x += tileWidth) blitBitmap(dc, barBitmap, x, rect.top, tileWidth, tileHeight);
    EndPaint(hwnd, &paint);
    return 1;
}

void CInstallAccountPage::setStatus(const char* text)
{
    SetDlgItemTextA(hwnd, IDC_ACCOUNT_STATUS, text);
    pumpMessages();
}

CInstallAccountPage::Outcome CInstallAccountPage::runAccountWork(CInstallWizard* owner)
{
    CInstallSettings& settings = owner->settings;
    // Only the second answer counts.
    if (connectionMissing(*connection)) systemDll::InternetAttemptConnect(0);
    if (connectionMissing(*connection)) {
        MessageBoxA(hwnd, "Could not connect to internet", "Error Registering", MB_OK | MB_ICONINFORMATION);
        return noConnection;
    }

    AccountDetails& details = settings.AccountDetails;
    if (settings.createAccount) {
        setStatus("Validating User Information...");
        installLog.write("Validating User", true);
        if (!details.validateUserData(settings.regoServer.c_str())) {
            setStatus(details.errorText.c_str());
            return validationRefused;
        }
        setStatus("Creating Account...");
        installLog.write("Registering user", true);
        if (!details.registerUser(hwnd, settings.regoServer.c_str(), settings.regoCommand.c_str())) {
            setStatus("Error Registering User..");
            return signUpRefused;
        }
    }
    if (settings.importRequested) {
        installLog.write("Importing Favorites", true);
        setStatus("Importing Favorites (may take several minutes)...");
        importFavorites(details, settings.importServer.c_str());  // whatever came of it, the wizard goes on
    }
    return done;
}

void CInstallAccountPage::onShown(CInstallWizard* owner)
{
    // Messages are dispatched all through the work, Cancel's question among
    // them; a Yes ends the frame only once this returns, so what was started
    // still reaches the service.
    backTarget = 0;
    working = 1;
    Outcome outcome = runAccountWork(owner);
    working = 0;
    switch (outcome) {
    case noConnection:
        // Back to 108, or to the welcome page when 108 passes itself over, and
        // forward from there: the user lands on 117 with both flags still set.
        backTarget = 108;
        owner->previousPage();
        owner->nextPage();
        break;
    case validationRefused:
        backTarget = -1;  // the form before, to be corrected
        owner->previousPage();
        break;
    case signUpRefused:
        backTarget = 117;
        owner->refreshButtons();
        owner->previousPage();
        break;
    case done:
        // The flags go only after the move: page 118 shows while createAccount
        // is set, and once both are clear no Back can run the work twice.
        owner->nextPage();
        owner->settings.createAccount = 0;
        owner->settings.importRequested = 0;
        break;
    }
}
