#include "account/CookieStore.h"

#include <wininet.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "BoundedText.h"

bool readCookie(const char* url, const char* name, char* buffer, DWORD& size)
{
    DWORD length = 0;
    InternetGetCookieA(url, "", nullptr, &length);
    if (length == 0) return false;
    std::vector<char> text(length + 1, 0);
    if (buffer) std::memset(buffer, 0, size);
    DWORD capacity = length;
    InternetGetCookieA(url, "", text.data(), &capacity);
    text[length] = 0;

    for (char* piece = text.data(); piece;) {
        char* end = std::strchr(piece, ';');
        if (end) *end = 0;
        while (*piece && std::isspace(static_cast<unsigned char>(*piece))) ++piece;
        // The start of the piece only: "passport" also finds "passportX".
        if (startsWithNoCase(piece, name)) {
            DWORD pieceLength = static_cast<DWORD>(std::strlen(piece));
            if (!buffer) {
                size = pieceLength + 1;  // the last match sets the size
            } else {
                if (size < pieceLength) return false;
                // A text of exactly `size` bytes fills the buffer without its zero.
                std::memcpy(buffer, piece, pieceLength);
                if (pieceLength < size) buffer[pieceLength] = 0;
                return true;
            }
        }
        piece = end ? end + 1 : nullptr;
    }
    return false;
}

namespace {
// "; expires = <date>" as our cookie texts write it. Wine's store does not see
// an expiry written with blanks around its equals sign: it keeps such a cookie
// for the process only, and drops a stored one of the same name. So the blanks
// go, at the one place where a text enters the store.
std::string withoutBlanksAroundExpires(const char* text)
{
    std::string out;
    const char* p = text;
    while (*p) {
        out += *p;
        if (*p++ != ';') continue;
        const char* attribute = p;
        while (*attribute == ' ' || *attribute == '\t') ++attribute;
        if (!startsWithNoCase(attribute, "expires")) continue;
        const char* equals = attribute + 7;
        while (*equals == ' ' || *equals == '\t') ++equals;
        if (*equals != '=') continue;
        const char* value = equals + 1;
        while (*value == ' ' || *value == '\t') ++value;
        out.append(p, attribute + 7 - p);
        out += '=';
        p = value;
    }
    return out;
}
}  // namespace

bool storeCookie(const char* url, const char* cookieText)
{
    std::string text = withoutBlanksAroundExpires(cookieText ? cookieText : "");
    return InternetSetCookieA(url, nullptr, text.c_str()) != FALSE;
}
