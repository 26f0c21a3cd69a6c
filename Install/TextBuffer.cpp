#include "TextBuffer.h"

#include <cstdlib>
#include <cstring>

CTextBuffer::CTextBuffer() : data(nullptr), capacity(step), length(0) {}

CTextBuffer::~CTextBuffer() { std::free(data); }

bool CTextBuffer::append(const void* bytes, size_t count)
{
    size_t need = length + count;
    if (need < length) return false;  // size_t overflow
    size_t newCapacity = capacity;
    if (need >= capacity || !data) {
        if (need >= capacity) {
            newCapacity = capacity + step;
            while (newCapacity <= need) newCapacity += step;
        }
        char* grown = static_cast<char*>(std::realloc(data, newCapacity + 1));
        if (!grown) return false;
        if (!data) grown[0] = 0;
        data = grown;
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
