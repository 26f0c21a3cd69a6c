#include "account/CookieStore.h"

#include <wininet.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "BoundedText.h"
#include "SystemLibraries.h"

bool readCookie(const char* url, const char* name, char* buffer, DWORD& size)
{
    DWORD length = 0;
    systemDll::InternetGetCookieA(url, "", nullptr, &length);
    if (length == 0) return false;
    std::vector<char> text(length + 1, 0);
    if (buffer) std::memset(buffer, 0, size);
    DWORD capacity = length;
    systemDll::InternetGetCookieA(url, "", text.data(), &capacity);
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
bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The attribute `name` of one ";" piece, with blanks before it and around its
// equals sign; the position of its value, or null when the piece is another.
const char* attributeValue(const char* piece, const char* name)
{
    while (isBlank(*piece)) ++piece;
    if (!startsWithNoCase(piece, name)) return nullptr;
    piece += std::strlen(name);
    while (isBlank(*piece)) ++piece;
    if (*piece != '=') return nullptr;
    ++piece;
    while (isBlank(*piece)) ++piece;
    return piece;
}

// What Wine's store misreads in the cookie texts it is handed:
// - an expiry written "expires = <date>", with blanks round its equals sign, is
//   not seen, so the cookie is kept for the process only and a stored one of
//   the same name is dropped;
// - a cookie with an empty "path=" is never found again by a later process;
// - behind "expires=" it copies the whole rest of the text, not the date alone,
//   into a buffer of 128 characters: a longer tail behind a short date runs
//   over it and brings the process down.
// So the blanks go, and the empty path, which means the default path anyway;
// and the expiry goes last, only the last one given, which is the one that
// counts. This is the one place where a text enters the store.
std::string forWineStore(const char* text)
{
    std::string out, expiry;
    bool first = true;
    for (const char* piece = text; piece;) {
        const char* end = std::strchr(piece, ';');
        std::string part = end ? std::string(piece, end) : std::string(piece);
        piece = end ? end + 1 : nullptr;
        if (!first) {
            const char* value = attributeValue(part.c_str(), "path");
            if (value && !*value) continue;  // an empty path
            if ((value = attributeValue(part.c_str(), "expires"))) {
                expiry = part.substr(0, part.find_first_not_of(" \t") + 7) + "=" + value;
                continue;
            }
            out += ';';
        }
        out += part;
        first = false;
    }
    if (!expiry.empty()) out += ";" + expiry;
    return out;
}
}  // namespace

bool storeCookie(const char* url, const char* cookieText)
{
    std::string text = forWineStore(cookieText ? cookieText : "");
    return systemDll::InternetSetCookieA(url, nullptr, text.c_str()) != FALSE;
}
