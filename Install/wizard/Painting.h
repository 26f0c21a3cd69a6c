#pragma once
#include <windows.h>

// The hand-made look of the wizard, drawn in the system's button colours so
// that it follows the user's colour scheme.

// 1 with both handles set, or 0 with both null when the file does not load.
int loadBitmapAndPalette(const char* path, HBITMAP& bitmap, HPALETTE& palette);
// "MS Sans Serif", 14 high; bold for a field found wanting.
HFONT createWizardFont(bool bold);
// "Arial", 20 high, heavy: the product name on the frame.
HFONT createHeadingFont();
// Text drawn three times with an offset: chiselled. Returns its width.
int drawEtchedText(HDC deviceContext, int x, int y, const char* text, bool raised);
void drawEtchedLine(HDC deviceContext, int x1, int y1, int x2, int y2);
void drawSunkenFrame(HDC deviceContext, int left, int top, int right, int bottom);
void blitBitmap(HDC deviceContext, HBITMAP bitmap, int x, int y, int width, int height);
