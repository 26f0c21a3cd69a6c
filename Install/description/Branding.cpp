// The partner's trailer behind the program file. The trailer comes from outside
// the build (tools/stamp appends it to a copy), so nothing in it is trusted:
// each length is checked against the bytes really there before it is used, and
// texts and the logo are read in bounded pieces.
#include "description/Branding.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "description/PathHelpers.h"

namespace {
uint32_t littleEndian(const unsigned char* bytes)
{
    return bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<uint32_t>(bytes[3]) << 24);
}

// A file opened for reading, closed with the object.
class CReadFile {
public:
    explicit CReadFile(const char* path)
        : handle(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr))
    {
    }
    ~CReadFile()
    {
        if (isOpen()) CloseHandle(handle);
    }
    CReadFile(const CReadFile&) = delete;
    CReadFile& operator=(const CReadFile&) = delete;

    bool isOpen() const { return handle != INVALID_HANDLE_VALUE; }
    bool size(uint64_t& out) const
    {
        DWORD high = 0;
        SetLastError(NO_ERROR);  // a size whose low word is all ones is no failure
        DWORD low = GetFileSize(handle, &high);
        if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) return false;
        out = (static_cast<uint64_t>(high) << 32) | low;
        return true;
    }
    // Exactly `count` bytes from `offset`, or false.
    bool readAt(uint64_t offset, void* out, DWORD count) const
    {
        LONG high = static_cast<LONG>(offset >> 32);
        SetLastError(NO_ERROR);
        if (SetFilePointer(handle, static_cast<LONG>(offset & 0xFFFFFFFFu), &high, FILE_BEGIN) ==
                INVALID_SET_FILE_POINTER &&
            GetLastError() != NO_ERROR)
            return false;
        DWORD got = 0;
        return ReadFile(handle, out, count, &got, nullptr) && got == count;
    }

private:
    HANDLE handle;
};

// Walks the fields of one block, never past `limit` (the length word).
class CTrailerCursor {
public:
    CTrailerCursor(const CReadFile& file, uint64_t start, uint64_t limit)
        : file(file), position(start), limit(limit)
    {
    }

    bool word(uint32_t& out)
    {
        unsigned char bytes[4];
        if (!fits(4) || !file.readAt(position, bytes, 4)) return false;
        out = littleEndian(bytes);
        position += 4;
        return true;
    }
    // A length word, then that many bytes of text: kept up to the first zero
    // byte and at most `keep` bytes.
    bool text(std::string& out, size_t keep)
    {
        uint32_t length = 0;
        if (!word(length) || !fits(length)) return false;
        std::vector<char> buffer(static_cast<size_t>(length < keep ? length : keep) + 1, 0);
        if (buffer.size() > 1 && !file.readAt(position, buffer.data(), static_cast<DWORD>(buffer.size() - 1)))
            return false;
        out = buffer.data();
        position += length;
        return true;
    }
    bool fits(uint64_t count) const { return count <= limit - position; }
    uint64_t here() const { return position; }

private:
    const CReadFile& file;
    uint64_t position;
    uint64_t limit;
};

// The end of the marker nearest the end of the file, or 0 when there is none
// ending within the search span.
uint64_t findMarkerEnd(const CReadFile& file, uint64_t fileSize)
{
    const uint64_t marker = sizeof brandingMarker - 1;
    uint64_t lowest = fileSize - brandingSearchSpan;  // callers ensure fileSize >= the span
    if (lowest < marker) lowest = marker;
    std::vector<char> tail(static_cast<size_t>(fileSize - lowest + marker));
    uint64_t tailStart = lowest - marker;
    if (!file.readAt(tailStart, tail.data(), static_cast<DWORD>(tail.size()))) return 0;
    for (uint64_t end = fileSize; end >= lowest; --end)
        if (std::memcmp(tail.data() + (end - marker - tailStart), brandingMarker, marker) == 0) return end;
    return 0;
}

// Copies `count` bytes of the file from `offset` into a new file `path`.
void writeLogo(const CReadFile& file, uint64_t offset, uint32_t count, const char* path)
{
    HANDLE out = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE) return;
    char block[10240];
    while (count > 0) {
        DWORD piece = count < sizeof block ? count : sizeof block;
        DWORD written = 0;
        if (!file.readAt(offset, block, piece) || !WriteFile(out, block, piece, &written, nullptr) ||
            written != piece)
            break;
        offset += piece;
        count -= piece;
    }
    CloseHandle(out);
}
}  // namespace

int readBrandingTrailer(const char* programPath, const char* logoFolder, CBranding& branding)
{
    branding = CBranding();
    CReadFile file(programPath);
    uint64_t fileSize = 0;
    if (!file.isOpen() || !file.size(fileSize) || fileSize < brandingSearchSpan) return 0;
    uint64_t end = findMarkerEnd(file, fileSize);
    if (end < 7) return 0;

    unsigned char lengthBytes[4];
    if (!file.readAt(end - 7, lengthBytes, 4)) return 0;
    uint64_t blockLength = littleEndian(lengthBytes);
    // The six words of the fields, the length word and the marker at least.
    if (blockLength < 31 || blockLength > end) return 0;

    CBranding read;
    CTrailerCursor cursor(file, end - blockLength, end - 7);
    uint32_t partnerA = 0, partnerB = 0, extra = 0, bitmapSize = 0;
    if (!cursor.word(partnerA) || !cursor.word(partnerB) || !cursor.text(read.label, brandingLabelLimit) ||
        !cursor.text(read.linkUrl, brandingLinkLimit) || !cursor.word(extra) || !cursor.word(bitmapSize) ||
        !cursor.fits(bitmapSize) || bitmapSize > 0x7FFFFFFFu)
        return 0;
    read.present = 1;
    read.partnerIdA = static_cast<int>(partnerA);
    read.partnerIdB = static_cast<int>(partnerB);
    read.extra = static_cast<int>(extra);
    read.bitmapSize = static_cast<int>(bitmapSize);
    if (bitmapSize != 0 && logoFolder && logoFolder[0]) {
        char path[MAX_PATH];
        joinPath(logoFolder, brandingLogoName, path, sizeof path);
        read.bitmapPath = path;
        writeLogo(file, cursor.here(), bitmapSize, path);
    }
    branding = read;
    return 1;
}
