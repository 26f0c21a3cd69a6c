#include "wizard/Painting.h"

#include <vector>

int loadBitmapAndPalette(const char* path, HBITMAP& bitmap, HPALETTE& palette)
{
    bitmap = nullptr;
    palette = nullptr;
    bitmap = static_cast<HBITMAP>(LoadImageA(nullptr, path, IMAGE_BITMAP, 0, 0,
                                             LR_LOADFROMFILE | LR_CREATEDIBSECTION | LR_DEFAULTSIZE));
    if (!bitmap) return 0;
    BITMAP info = {};
    GetObjectA(bitmap, sizeof info, &info);
    if (info.bmPlanes * info.bmBitsPixel > 8) {
        HDC screen = GetDC(nullptr);
        palette = CreateHalftonePalette(screen);
        ReleaseDC(nullptr, screen);
        return 1;
    }
    RGBQUAD table[256] = {};
    HDC memory = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(memory, bitmap);
    GetDIBColorTable(memory, 0, 256, table);
    SelectObject(memory, old);
    DeleteDC(memory);
    std::vector<BYTE> block(sizeof(LOGPALETTE) + 255 * sizeof(PALETTEENTRY));
    LOGPALETTE* logical = reinterpret_cast<LOGPALETTE*>(block.data());
    logical->palVersion = 0x300;
    logical->palNumEntries = 256;
    for (int i = 0; i < 256; ++i)
        logical->palPalEntry[i] = {table[i].rgbRed, table[i].rgbGreen, table[i].rgbBlue, 0};
    palette = CreatePalette(logical);
    return 1;
}

namespace {
HFONT makeFont(const char* face, int height, int weight)
{
    LOGFONTA font = {};
    font.lfHeight = height;
    font.lfWeight = weight;
    font.lfQuality = PROOF_QUALITY;
    font.lfPitchAndFamily = VARIABLE_PITCH;
    lstrcpynA(font.lfFaceName, face, LF_FACESIZE);
    return CreateFontIndirectA(&font);
}

void line(HDC deviceContext, COLORREF colour, int x1, int y1, int x2, int y2)
{
    HPEN pen = CreatePen(PS_SOLID, 1, colour);
    HGDIOBJ old = SelectObject(deviceContext, pen);
    MoveToEx(deviceContext, x1, y1, nullptr);
    LineTo(deviceContext, x2, y2);
    SelectObject(deviceContext, old);
    DeleteObject(pen);
}
}  // namespace

HFONT createWizardFont(bool bold) { return makeFont("MS Sans Serif", 14, bold ? 700 : 400); }

HFONT createHeadingFont() { return makeFont("Arial", 20, 900); }

int drawEtchedText(HDC deviceContext, int x, int y, const char* text, bool raised)
{
    RECT rect = {0, 0, 0, 0};
    DrawTextA(deviceContext, text, -1, &rect, DT_CALCRECT | DT_NOPREFIX);
    OffsetRect(&rect, x - rect.left, y - rect.top);
    COLORREF shadow = GetSysColor(COLOR_BTNSHADOW), highlight = GetSysColor(COLOR_BTNHIGHLIGHT);
    SetTextColor(deviceContext, raised ? highlight : shadow);
    DrawTextA(deviceContext, text, -1, &rect, DT_NOPREFIX);
    OffsetRect(&rect, 2, 2);
    SetTextColor(deviceContext, raised ? shadow : highlight);
    DrawTextA(deviceContext, text, -1, &rect, DT_NOPREFIX);
    OffsetRect(&rect, -1, -1);
    SetTextColor(deviceContext, GetSysColor(COLOR_BTNFACE));
    DrawTextA(deviceContext, text, -1, &rect, DT_NOPREFIX);
    return rect.right - rect.left;
}

void drawEtchedLine(HDC deviceContext, int x1, int y1, int x2, int y2)
{
    line(deviceContext, GetSysColor(COLOR_BTNSHADOW), x1, y1, x2, y2);
    line(deviceContext, GetSysColor(COLOR_BTNHIGHLIGHT), x1 + 1, y1 + 1, x2 + 1, y2 + 1);
}

void drawSunkenFrame(HDC deviceContext, int left, int top, int right, int bottom)
{
    int l = left - 1, t = top - 1;
    HPEN shadow = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_BTNSHADOW));
    HPEN highlight = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_BTNHIGHLIGHT));
    HGDIOBJ old = SelectObject(deviceContext, shadow);
    MoveToEx(deviceContext, l, bottom, nullptr);
    LineTo(deviceContext, l, t);
    LineTo(deviceContext, right, t);
    SelectObject(deviceContext, highlight);
    LineTo(deviceContext, right, bottom);
    LineTo(deviceContext, l, bottom);
    SelectObject(deviceContext, old);
    DeleteObject(shadow);
    DeleteObject(highlight);
}

void blitBitmap(HDC deviceContext, HBITMAP bitmap, int x, int y, int width, int height)
{
    HDC memory = CreateCompatibleDC(deviceContext);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(deviceContext, x, y, width, height, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}
