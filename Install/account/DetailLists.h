#pragma once

// The rows of the details form's drop-down lists, in the order in which they
// stand in the combos. Row 0 of each is a prompt. Country, industry and
// occupation travel as the row's index, so the service holds the same lists in
// the same order; the others travel as the code beside the row.

struct CDetailList {
    const char* const* rows;
    int count;
};

extern const CDetailList ageRangeList;
extern const CDetailList genderList;
extern const CDetailList countryList;
extern const CDetailList industryList;
extern const CDetailList occupationList;
extern const CDetailList companyTypeList;
extern const CDetailList employeeCountList;

// The codes of a selected row. A row outside the list (no selection) is taken
// as the prompt.
int ageRangeCode(int row);
const char* genderCode(int row);
int employeeCount(int row);
// The row's own text, or an empty text for the prompt.
const char* companyTypeText(int row);
