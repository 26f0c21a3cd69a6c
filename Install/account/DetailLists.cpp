#include "account/DetailLists.h"

namespace {
template <int N>
constexpr CDetailList listOf(const char* const (&rows)[N])
{
    return {rows, N};
}

const char* const ageRanges[] = {
    "Select your age range.", "15 and under", "16 to 20", "21 to 25", "26 to 30", "31 to 35", "36 to 40",
    "41 to 45", "46 to 50", "51 to 55", "56 to 60", "61 to 65", "66 and above",
};
// The age the service files a range under: roughly its middle.
const int ageCodes[] = {0, 15, 18, 23, 28, 33, 38, 43, 48, 53, 58, 63, 68};

const char* const genders[] = {"Select your Gender", "Male", "Female"};
const char* const genderCodes[] = {"", "M", "F"};

const char* const industries[] = {
    "Select your Industry", "Banking/Finance/Real Estate", "Computer-related (IS, MIS, DP, Internet)",
    "Computer-related (hardware)", "Computer-related (software)", "Education, research",
    "Engineering/construction", "Manufacturing/distribution", "Business supplies or services",
    "Medical/health services", "Entertainment/media/publishing", "Hospitality (travel/accommodations)",
    "Consumer retail/wholesale", "Nonprofit/membership organizations", "Government", "Legal services",
    "Other",
};

const char* const occupations[] = {
    "Select your Occupation", "Executive/managerial", "Professional (doctor, lawyer, etc.)",
    "Academic/educator", "Computer technical/engineering", "Other technical/engineering",
    "Service/customer support", "Clerical/administrative", "Sales/marketing", "Tradesman/craftsman",
    "College/graduate student", "School student", "Homemaker", "Self-employed/own company",
    "Unemployed, looking for work", "Retired", "Other",
};

const char* const companyTypes[] = {
    "Select your Company Type", "Corporation", "Small Business", "Consultant", "Education", "Government",
    "Home (Personal Use)", "Other",
};

const char* const employeeCounts[] = {
    "Please Select", "1 to 5", "5 to 10", "10 to 20", "20 to 50", "50 to 100", "100 to 1000", "1000+",
};
// Row 1 stands for its lower bound, the others for their upper bound.
const int headCounts[] = {0, 1, 10, 20, 50, 100, 1000, 2000};

// United States and Canada first, then alphabetical, "Other" last.
const char* const countries[] = {
    "Select your Country", "United States of America", "Canada", "Afghanistan", "Albania", "Algeria",
    "American Samoa", "Andorra", "Angola", "Anguilla", "Antarctica", "Antigua and Barbuda", "Argentina",
    "Armenia", "Aruba", "Australia", "Austria", "Azerbaijan", "Bahamas", "Bahrain", "Bangladesh", "Barbados",
    "Belarus", "Belgium", "Belize", "Benin", "Bermuda", "Bhutan", "Bolivia", "Bosnia and Herzegovina",
    "Botswana", "Bouvet Island", "Brazil", "British Indian Ocean Territory", "British Virgin Islands",
    "Brunei", "Bulgaria", "Burkina Faso", "Burundi", "Cambodia", "Cameroon", "Cape Verde", "Cayman Islands",
    "Central African Republic", "Chad", "Chile", "China", "Christmas Island", "Cocos Islands", "Colombia",
    "Comoros", "Congo", "Cook Islands", "Costa Rica", "Croatia", "Cuba", "Cyprus", "Czech Republic",
    "Denmark", "Djibouti", "Dominica", "Dominican Republic", "East Timor", "Ecuador", "Egypt", "El Salvador",
    "Equatorial Guinea", "Eritrea", "Estonia", "Ethiopia", "Falkland Islands", "Faroe Islands", "Fiji",
    "Finland", "France", "French Guiana", "French Polynesia", "French Southern Territories", "Gabon",
    "Gambia", "Georgia", "Germany", "Ghana", "Gibraltar", "Greece", "Greenland", "Grenada", "Guadeloupe",
    "Guam", "Guatemala", "Guinea", "Guinea-Bissau", "Guyana", "Haiti", "Heard and McDonald Islands",
    "Honduras", "Hong Kong", "Hungary", "Iceland", "India", "Indonesia", "Iran", "Iraq", "Ireland", "Israel",
    "Italy", "Ivory Coast", "Jamaica", "Japan", "Jordan", "Kazakhstan", "Kenya", "Kiribati", "Korea, North",
    "Korea, South", "Kuwait", "Kyrgyzstan", "Laos", "Latvia", "Lebanon", "Lesotho", "Liberia", "Libya",
    "Liechtenstein", "Lithuania", "Luxembourg", "Macau", "Macedonia, Former Yugoslav Republic of",
    "Madagascar", "Malawi", "Malaysia", "Maldives", "Mali", "Malta", "Marshall Islands", "Martinique",
    "Mauritania", "Mauritius", "Mayotte", "Mexico", "Micronesia, Federated States of", "Moldova", "Monaco",
    "Mongolia", "Montserrat", "Morocco", "Mozambique", "Myanmar", "Namibia", "Nauru", "Nepal", "Netherlands",
    "Netherlands Antilles", "New Caledonia", "New Zealand", "Nicaragua", "Niger", "Nigeria", "Niue",
    "Norfolk Island", "Northern Mariana Islands", "Norway", "Oman", "Pakistan", "Palau", "Panama",
    "Papua New Guinea", "Paraguay", "Peru", "Philippines", "Pitcairn Island", "Poland", "Portugal",
    "Puerto Rico", "Qatar", "Reunion", "Romania", "Russia", "Rwanda", "S. Georgia and S. Sandwich Isles.",
    "Saint Kitts & Nevis", "Saint Lucia", "Saint Vincent and The Grenadines", "Samoa", "San Marino",
    "Sao Tome and Principe", "Saudi Arabia", "Senegal", "Seychelles", "Sierra Leone", "Singapore", "Slovakia",
    "Slovenia", "Somalia", "South Africa", "Spain", "Sri Lanka", "St. Helena", "St. Pierre and Miquelon",
    "Sudan", "Suriname", "Svalbard and Jan Mayen Islands", "Swaziland", "Sweden", "Switzerland", "Syria",
    "Taiwan", "Tajikistan", "Tanzania", "Thailand", "Togo", "Tokelau", "Tonga", "Trinidad and Tobago",
    "Tunisia", "Turkey", "Turkmenistan", "Turks and Caicos Islands", "Tuvalu", "U.S. Minor Outlying Islands",
    "Uganda", "Ukraine", "United Arab Emirates", "United Kingdom", "Uruguay", "Uzbekistan", "Vanuatu",
    "Vatican City", "Venezuela", "Vietnam", "Virgin Islands", "Wallis and Futuna Islands", "Western Sahara",
    "Yemen", "Yugoslavia (Former)", "Zaire", "Zambia", "Zimbabwe", "Other",
};

static_assert(sizeof ageCodes / sizeof *ageCodes == sizeof ageRanges / sizeof *ageRanges, "one code a row");
static_assert(sizeof genderCodes / sizeof *genderCodes == sizeof genders / sizeof *genders, "one code a row");
static_assert(sizeof headCounts / sizeof *headCounts == sizeof employeeCounts / sizeof *employeeCounts,
              "one code a row");
static_assert(sizeof countries / sizeof *countries == 239, "the service's country list has 239 rows");

template <typename T, int N>
T codeOf(const T (&codes)[N], int row)
{
    return row > 0 && row < N ? codes[row] : codes[0];
}
}  // namespace

const CDetailList ageRangeList = listOf(ageRanges);
const CDetailList genderList = listOf(genders);
const CDetailList countryList = listOf(countries);
const CDetailList industryList = listOf(industries);
const CDetailList occupationList = listOf(occupations);
const CDetailList companyTypeList = listOf(companyTypes);
const CDetailList employeeCountList = listOf(employeeCounts);

int ageRangeCode(int row) { return codeOf(ageCodes, row); }
const char* genderCode(int row) { return codeOf(genderCodes, row); }
int employeeCount(int row) { return codeOf(headCounts, row); }
const char* companyTypeText(int row)
{
    return row > 0 && row < companyTypeList.count ? companyTypes[row] : "";
}
