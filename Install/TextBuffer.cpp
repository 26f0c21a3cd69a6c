#include "TextBuffer.h"

#include <cstdlib>
#include <cstring>

CTextBuffer::CTextBuffer() : data(nullptr), capacity(step), length(0), reserved(0) {}

CTextBuffer::~CTextBuffer() { std::free(data); }

bool CTextBuffer::append(const void* bytes, size_t count)
{
    size_t need = length + count;
    if (need < length) return false;  // size_t overflow
    size_t newCapacity = capacity;
    if (need >= capacity || !data) {
        // The first step of 80 beyond the need.
        if (need >= capacity) newCapacity = capacity + step * ((need - capacity) / step + 1);
        if (newCapacity > reserved || !data) {
            size_t newReserved = newCapacity > reserved * 2 ? newCapacity : reserved * 2;
            char* grown = static_cast<char*>(std::realloc(data, newReserved + 1));
            if (!grown) return false;
            if (!data) grown[0] = 0;
            data = grown;
            reserved = newReserved;
        }
        capacity = newCapacity;
    }
    if (count) std::memcpy(data + length, bytes, count);
    length = need;
    data[length] = 0;
    return true;
}

bool CTextBuffer::appendText(const char* text)
{
    if (!text) return true;
    return append(text, std::strlen(text));
}
