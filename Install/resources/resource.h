#pragma once
// Resource ids of SETUP.EXE, grouped by the dialog or table they belong to.

// String table
#define IDS_CANCEL_QUESTION      1
#define IDS_CREATE_FOLDER        2
#define IDS_CORRUPT_INSTALL      3
#define IDS_VERSION_TOO_OLD      4
#define IDS_VERSION_TOO_NEW      5
#define IDS_RESTART_QUESTION     6
#define IDS_NEWER_VERSION        7
#define IDS_REGISTER_FAILED      8
#define IDS_SUPPORT_ADDRESS      9

// Error list dialog
#define IDD_ERROR_LIST           150
#define IDC_ERROR_LIST_TEXT      1070

// Payload: the cabinet in the program's resources
#define IDR_PAYLOAD              101

// Extraction dialog
#define IDD_EXTRACT              106
#define IDB_EXTRACT              107
#define IDC_EXTRACT_PROGRESS     1007
#define IDC_EXTRACT_STATUS       1008

// Wizard frame
#define IDD_WIZARD               101
#define IDC_WIZARD_PANEL         1002
#define IDC_WIZARD_PAGE_AREA     1003
#define IDC_WIZARD_LOGO          1028
#define IDC_WIZARD_BACK          1000
#define IDC_WIZARD_NEXT          1001
#define IDC_WIZARD_HELP          1064
#define IDC_HAND_CURSOR          134

// Link control of the form pages
#define IDC_FORM_LINK            1068

// Welcome page
#define IDD_PAGE_WELCOME         103
// Agreement page
#define IDD_PAGE_AGREEMENT       131
#define IDC_AGREEMENT_TEXT       1027
#define IDC_AGREEMENT_ACCEPT     1065
#define IDC_AGREEMENT_REFUSE     1066
// Destination page
#define IDD_PAGE_DESTINATION     105
#define IDC_DESTINATION_LABEL    1004
#define IDC_DESTINATION_FOLDER   1005
#define IDC_DESTINATION_BROWSE   1006
// Ready page
#define IDD_PAGE_READY           116

// Update page
#define IDD_PAGE_UPDATE          126
#define IDC_UPDATE_UNINSTALL     1024
#define IDC_UPDATE_UPDATE        1025
// Copy page
#define IDD_PAGE_COPY            117
#define IDC_COPY_PROGRESS        1007
#define IDC_COPY_STATUS          1016
// Finish pages: installed, uninstalled, install failed, uninstall failed
#define IDD_PAGE_FINISHED        144
#define IDD_PAGE_UNINSTALLED     133
#define IDD_PAGE_INSTALL_FAILED  135
#define IDD_PAGE_UNINSTALL_FAILED 137
#define IDC_FINISH_README        1018
#define IDC_FINISH_BROWSER       1031

// Machine analysis: the close windows page, and the search pages of /T
#define IDD_PAGE_CLOSE_WINDOWS   114
#define IDC_CLOSE_SKIP           1012
#define IDC_CLOSE_LIST           1014
#define IDD_PAGE_SEARCH_INTRO    120
#define IDC_SEARCH_SKIP          1012
#define IDD_PAGE_SEARCH          121
#define IDC_SEARCH_ACTIVITY      1020
#define IDC_SEARCH_FOLDER        1021
