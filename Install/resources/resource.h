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
