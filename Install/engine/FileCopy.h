#pragma once
#include <windows.h>

// The kinds of a copy report.
enum CopyReport { copyStart = 1, copyBlock = 2, copyEnd = 3, copyStopped = 5 };
typedef void (*CopyProgress)(const char* path, DWORD totalBytes, DWORD doneBytes, int kind, void* context);

// Results of copyFileBlocks: non-zero unless the copy failed.
enum CopyResult { copyFailed = 0, copyCompleted = 1, copyCancelled = 2 };

// Copies `source` to `target` in blocks of 10,240 bytes, reporting each block
// and testing `cancelFlag` after it. The source is opened first, so a target
// that stands is never emptied for a source that is not there; a read or write
// that fails, or a Cancel, removes the partial target rather than leave half a
// file behind.
int copyFileBlocks(const char* source, const char* target, const int& cancelFlag, void* context,
                   CopyProgress callback);
// The whole test for a file in use: can it be opened for writing, unshared?
bool canOpenForWrite(const char* path);
