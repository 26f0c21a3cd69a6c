#include "account/DetailsPage.h"

#include <string>

#include "account/DetailLists.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

CInstallDetailsPage::CInstallDetailsPage() : CInstallFormPage(IDD_PAGE_PERSONAL) {}

bool CInstallDetailsPage::isBusinessForm() const { return dialogId == IDD_PAGE_BUSINESS; }

namespace {
struct ComboRows {
    int id;
    const CDetailList& list;
};

struct EditLimit {
    int id;
    int limit;
};
}  // namespace

INT_PTR CInstallDetailsPage::onInitDialog()
{
    // Eight menu heights of drop-down list under each combo.
    int menuHeight = GetSystemMetrics(SM_CYMENU);
    const ComboRows combos[] = {
        {IDC_DETAILS_AGE, ageRangeList},           {IDC_DETAILS_GENDER, genderList},
        {IDC_DETAILS_COUNTRY, countryList},        {IDC_DETAILS_INDUSTRY, industryList},
        {IDC_DETAILS_OCCUPATION, occupationList},  {IDC_DETAILS_COMPANY_TYPE, companyTypeList},
        {IDC_DETAILS_EMPLOYEES, employeeCountList},
    };
    for (const ComboRows& combo : combos) {
        HWND control = GetDlgItem(hwnd, combo.id);
        if (!control) continue;
        for (int row = 0; row < combo.list.count; ++row)
            SendMessageA(control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(combo.list.rows[row]));
        SendMessageA(control, CB_SETCURSEL, 0, 0);
        RECT client;
        GetClientRect(control, &client);
        SetWindowPos(control, nullptr, 0, 0, client.right - client.left, 8 * menuHeight,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
    }
    const EditLimit limits[] = {
        {IDC_DETAILS_FIRST_NAME, 60}, {IDC_DETAILS_LAST_NAME, 60}, {IDC_DETAILS_ZIP, 20},
        {IDC_DETAILS_COMPANY, 60},    {IDC_DETAILS_JOB_TITLE, 60}, {IDC_DETAILS_WEBSITE, 200},
        {IDC_DETAILS_PHONE, 20},
    };
    for (const EditLimit& edit : limits)
        if (has(edit.id)) SendDlgItemMessageA(hwnd, edit.id, EM_LIMITTEXT, edit.limit, 0);
    CheckDlgButton(hwnd, IDC_DETAILS_NEWS, BST_CHECKED);
    return CInstallFormPage::onInitDialog();
}

void CInstallDetailsPage::onDlgReady() { SetFocus(GetDlgItem(hwnd, IDC_DETAILS_FIRST_NAME)); }

int CInstallDetailsPage::skipCheck(CInstallWizard* owner) { return owner->settings.createAccount == 0 ? 1 : 0; }

int CInstallDetailsPage::selectedRow(int comboId) const
{
    if (!has(comboId)) return 0;
    LRESULT row = SendDlgItemMessageA(hwnd, comboId, CB_GETCURSEL, 0, 0);
    return row == CB_ERR ? 0 : static_cast<int>(row);
}

int CInstallDetailsPage::onNext(CInstallWizard* owner)
{
    validated = 1;
    AccountDetails& details = owner->settings.AccountDetails;
    // A field the dialog lacks leaves its member as it was.
    struct {
        int id;
        std::string& member;
    } const edits[] = {
        {IDC_DETAILS_FIRST_NAME, details.FirstName}, {IDC_DETAILS_LAST_NAME, details.LastName},
        {IDC_DETAILS_ZIP, details.Zip},              {IDC_DETAILS_PHONE, details.Phone},
        {IDC_DETAILS_COMPANY, details.company_name}, {IDC_DETAILS_JOB_TITLE, details.JobTitle},
        {IDC_DETAILS_WEBSITE, details.website},
    };
    for (const auto& edit : edits) {
        if (!has(edit.id)) continue;
        char text[255] = "";
        GetDlgItemTextA(hwnd, edit.id, text, sizeof text);
        edit.member = text;
    }
    if (has(IDC_DETAILS_COMPANY_TYPE)) details.company_type = companyTypeText(selectedRow(IDC_DETAILS_COMPANY_TYPE));
    details.Country = selectedRow(IDC_DETAILS_COUNTRY);
    details.Industry = selectedRow(IDC_DETAILS_INDUSTRY);
    details.Occupation = selectedRow(IDC_DETAILS_OCCUPATION);
    details.NewServices = IsDlgButtonChecked(hwnd, IDC_DETAILS_NEWS) == BST_CHECKED ? 1 : 0;
    if (has(IDC_DETAILS_GENDER)) details.Gender = genderCode(selectedRow(IDC_DETAILS_GENDER));
    details.AgeRange = ageRangeCode(selectedRow(IDC_DETAILS_AGE));
    if (has(IDC_DETAILS_EMPLOYEES)) details.number_of_employees = employeeCount(selectedRow(IDC_DETAILS_EMPLOYEES));

    bool valid = details.checkDetailFields(owner->settings.regoCommand.c_str());
    if (!valid) MessageBoxA(hwnd, details.errorText.c_str(), "Validation Errors", MB_OK | MB_ICONINFORMATION);
    repaint();
    return valid ? 1 : 0;
}

int CInstallDetailsPage::isFieldValid(int controlId)
{
    if (!wizard) return 1;
    const AccountDetails& details = wizard->settings.AccountDetails;
    if (!isBusinessForm()) {
        switch (controlId) {
        case IDC_LABEL_AGE_OR_COMPANY: return details.AgeRange != 0;
        case IDC_LABEL_GENDER_OR_EMPLOYEES: return !details.Gender.empty();
        case IDC_LABEL_COUNTRY: return details.Country != 0;
        case IDC_LABEL_ZIP: return !details.Zip.empty();
        default: return 1;
        }
    }
    switch (controlId) {
    case IDC_LABEL_FIRST_NAME: return !details.FirstName.empty();
    case IDC_LABEL_LAST_NAME: return !details.LastName.empty();
    case IDC_LABEL_AGE_OR_COMPANY: return !details.company_name.empty();
    case IDC_LABEL_GENDER_OR_EMPLOYEES: return details.number_of_employees > 0;
    case IDC_LABEL_PHONE: return !details.Phone.empty();
    case IDC_LABEL_COUNTRY: return details.Country > 0;
    case IDC_LABEL_JOB_TITLE: return !details.JobTitle.empty();
    case IDC_LABEL_WEBSITE: return !details.website.empty();
    // A zip of one character keeps a plain label, though Next refuses it.
    case IDC_LABEL_ZIP: return !details.Zip.empty();
    case IDC_LABEL_COMPANY_TYPE: return !details.company_type.empty();
    default: return 1;
    }
}
