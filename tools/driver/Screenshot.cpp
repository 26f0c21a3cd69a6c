#include "Screenshot.h"

#include <windows.h>

namespace uidriver {
namespace {
// The screen's device context, a memory context and the bitmap that receives
// the copy; released in reverse order.
class ScreenCopy {
public:
    explicit ScreenCopy(const BITMAPINFO& info)
        : screen(GetDC(nullptr)), memory(CreateCompatibleDC(screen)),
          bitmap(CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0))
    {
    }
    ~ScreenCopy()
    {
        if (bitmap) DeleteObject(bitmap);
        if (memory) DeleteDC(memory);
        ReleaseDC(nullptr, screen);
    }
    ScreenCopy(const ScreenCopy&) = delete;
    ScreenCopy& operator=(const ScreenCopy&) = delete;

    // The pixels, or null when the copy failed.
    const void* take(int width, int height)
    {
        if (!memory || !bitmap) return nullptr;
        HGDIOBJ old = SelectObject(memory, bitmap);
        BOOL copied = BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
        GdiFlush();
        SelectObject(memory, old);
        return copied ? bits : nullptr;
    }

private:
    HDC screen;
    HDC memory;
    void* bits = nullptr;
    HBITMAP bitmap;
};
}  // namespace

bool saveScreen(const std::string& path)
{
    int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;  // rows bottom-up, as a .bmp file keeps them
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    info.bmiHeader.biSizeImage = ((static_cast<DWORD>(width) * 3 + 3) & ~3u) * height;

    ScreenCopy copy(info);
    const void* bits = copy.take(width, height);
    if (!bits) return false;
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    BITMAPFILEHEADER header = {};
    header.bfType = 0x4D42;  // "BM"
    header.bfOffBits = sizeof header + sizeof info.bmiHeader;
    header.bfSize = header.bfOffBits + info.bmiHeader.biSizeImage;
    DWORD done = 0;
    bool written = WriteFile(file, &header, sizeof header, &done, nullptr) &&
                   WriteFile(file, &info.bmiHeader, sizeof info.bmiHeader, &done, nullptr) &&
                   WriteFile(file, bits, info.bmiHeader.biSizeImage, &done, nullptr);
    CloseHandle(file);
    return written;
}

}  // namespace uidriver
