#pragma once
#include <cstddef>
#include <string>
#include <vector>

// The keys of a key list as GetPrivateProfileStringA gives it (names each ended
// by a zero, the list by a second one), walked byte by byte up to the last byte
// of `size`. An empty list gives one empty key; a key cut by the end of the
// buffer comes out cut.
std::vector<std::string> walkKeyList(const char* list, size_t size);

// A comma list: a run of commas is one separator, leading commas are skipped,
// so no field is empty. Blanks around fields stay.
std::vector<std::string> splitCommaList(const char* text);

// True only for the whole value "TRUE", in any case.
bool profileBool(const char* value);
