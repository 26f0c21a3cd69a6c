#pragma once
#include <cstdarg>
#include <cstddef>

// Every buffer of the program is filled by a truncating copy: a longer text is
// cut, never refused and never written past the end.

// Copies at most capacity - 1 bytes of `source` and terminates. Null source
// gives an empty text. Returns `out`.
char* copyText(char* out, const char* source, size_t capacity);
// Copies at most `count` bytes of `source` (fewer if it ends first), cut to the
// capacity as above.
char* copyTextPart(char* out, const char* source, size_t count, size_t capacity);
// Appends as much of `source` as fits.
char* appendText(char* out, const char* source, size_t capacity);
// True if `text` begins with `prefix`, ignoring case (ASCII letters).
bool startsWithNoCase(const char* text, const char* prefix);
// True if `text` contains `needle` anywhere, ignoring case.
bool containsNoCase(const char* text, const char* needle);
bool equalsNoCase(const char* a, const char* b);

// Formats into `out` as printf does, cut at the capacity and always terminated.
// The runtime's own _vsnprintf does the work: it neither terminates nor says
// how long a text that does not fit would have been, so the end is made here.
// The formats are the runtime's (no floating point is ever formatted).
void formatText(char* out, size_t capacity, const char* format, ...)
    __attribute__((format(ms_printf, 3, 4)));
void formatTextList(char* out, size_t capacity, const char* format, va_list args)
    __attribute__((format(ms_printf, 3, 0)));
