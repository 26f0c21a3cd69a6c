#pragma once
#include <cstddef>

// A growing, always zero-terminated byte buffer. Capacity grows in steps of 80
// bytes; the log builds each line in one, the HTTP client each reply body.
class CTextBuffer {
public:
    CTextBuffer();
    ~CTextBuffer();
    CTextBuffer(const CTextBuffer&) = delete;
    CTextBuffer& operator=(const CTextBuffer&) = delete;

    // False, with the buffer as it was, when memory cannot be had.
    bool append(const void* bytes, size_t count);
    bool appendText(const char* text);
    const char* text() const { return data ? data : ""; }
    size_t size() const { return length; }
    size_t allocated() const { return capacity; }

private:
    static const size_t step = 80;
    char* data;
    size_t capacity;
    size_t length;
    // The bytes really held, less the terminator's: at least `capacity`, and
    // grown by doubling, so that a long reply read in many pieces is not
    // copied anew with every piece.
    size_t reserved;
};
