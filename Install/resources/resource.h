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

// Account form pages: login details (page 114), personal and business details
// (page 115). Label ids are shared between the two details dialogs but stand
// for different fields; the ids of dialog 138 overlap those of 153.
#define IDC_FORM_NOTE            1067
#define IDD_PAGE_LOGIN           138
#define IDC_LOGIN_USER           1030
#define IDC_LOGIN_PASSWORD       1031
#define IDC_LOGIN_REPEAT         1032
#define IDC_LOGIN_HINT           1033
#define IDC_LOGIN_EMAIL          1034
#define IDC_LOGIN_USER_LABEL     1048
#define IDC_LOGIN_PASSWORD_LABEL 1049
#define IDC_LOGIN_REPEAT_LABEL   1050
#define IDC_LOGIN_HINT_LABEL     1051
#define IDC_LOGIN_EMAIL_LABEL    1052
#define IDD_PAGE_PERSONAL        139
#define IDD_PAGE_BUSINESS        153
#define IDC_DETAILS_NEWS         1017
#define IDC_DETAILS_AGE          1038
#define IDC_DETAILS_GENDER       1039
#define IDC_DETAILS_FIRST_NAME   1040
#define IDC_DETAILS_LAST_NAME    1041
#define IDC_DETAILS_COMPANY      1042
#define IDC_DETAILS_COUNTRY      1043
#define IDC_DETAILS_INDUSTRY     1044
#define IDC_DETAILS_OCCUPATION   1045
#define IDC_DETAILS_JOB_TITLE    1047
#define IDC_DETAILS_WEBSITE      1048
#define IDC_DETAILS_EMPLOYEES    1075
#define IDC_DETAILS_PHONE        1079
#define IDC_DETAILS_ZIP          1081
#define IDC_DETAILS_COMPANY_TYPE 1083
#define IDC_LABEL_FIRST_NAME     1054
#define IDC_LABEL_LAST_NAME      1055
#define IDC_LABEL_AGE_OR_COMPANY 1056
#define IDC_LABEL_GENDER_OR_EMPLOYEES 1057
#define IDC_LABEL_PHONE          1058
#define IDC_LABEL_COUNTRY        1059
#define IDC_LABEL_INDUSTRY       1060
#define IDC_LABEL_OCCUPATION     1061
#define IDC_LABEL_JOB_TITLE      1063
#define IDC_LABEL_WEBSITE        1064
#define IDC_LABEL_ZIP            1080
#define IDC_LABEL_COMPANY_TYPE   1082

// Account choice page: dialog 145 when a passport cookie is known, 152 when not
#define IDD_PAGE_CHOICE_EXISTING 145
#define IDD_PAGE_CHOICE_NEW      152
#define IDC_CHOICE_NEW           1030
#define IDC_CHOICE_EXISTING      1031
#define IDC_CHOICE_IMPORT        1017
#define IDC_CHOICE_DETECTED      1071
// Account progress page and its running bar
#define IDD_PAGE_ACCOUNT         141
#define IDB_ACCOUNT_BAR          143
#define IDC_ACCOUNT_BAR          1062
#define IDC_ACCOUNT_STATUS       1063
// Account confirmation page (its link is IDC_FORM_LINK)
#define IDD_PAGE_CONFIRM         149
#define IDC_CONFIRM_USER         1030
#define IDC_CONFIRM_EMAIL        1034
#define IDC_CONFIRM_ZIP          1069

// Machine analysis: the close windows page, and the search pages of /T
#define IDD_PAGE_CLOSE_WINDOWS   114
#define IDC_CLOSE_SKIP           1012
#define IDC_CLOSE_LIST           1014
#define IDD_PAGE_SEARCH_INTRO    120
#define IDC_SEARCH_SKIP          1012
#define IDD_PAGE_SEARCH          121
#define IDC_SEARCH_ACTIVITY      1020
#define IDC_SEARCH_FOLDER        1021
