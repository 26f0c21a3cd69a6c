#include "engine/FileCopy.h"

#include <vector>

namespace {
const DWORD blockSize = 10240;

void report(CopyProgress callback, const char* path, DWORD total, DWORD done, int kind, void* context)
{
    if (callback) callback(path, total, done, kind, context);
}
}  // namespace

int copyFileBlocks(const char* source, const char* target, const int& cancelFlag, void* context,
                   CopyProgress callback)
{
    HANDLE in = CreateFileA(source, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (in == INVALID_HANDLE_VALUE) return copyFailed;
    HANDLE out = CreateFileA(target, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE) {
        CloseHandle(in);
        return copyFailed;
    }
    DWORD size = GetFileSize(in, nullptr);
    int result = size == INVALID_FILE_SIZE ? copyFailed : copyCompleted;
    if (size == INVALID_FILE_SIZE) size = 0;
    report(callback, target, size, 0, copyStart, context);
    std::vector<char> block(blockSize);
    DWORD done = 0;
    for (DWORD offset = 0; result == copyCompleted && offset < size; offset += blockSize) {
        DWORD got = 0, written = 0;
        if (!ReadFile(in, block.data(), blockSize, &got, nullptr) || got == 0 ||
            !WriteFile(out, block.data(), got, &written, nullptr) || written != got) {
            result = copyFailed;  // a full disk ends here
            break;
        }
        done += written;
        report(callback, target, size, done, copyBlock, context);
        if (cancelFlag && done < size) {
            report(callback, target, size, done, copyStopped, context);
            result = copyCancelled;
        }
    }
    if (result == copyCompleted) report(callback, target, size, done, copyEnd, context);
    CloseHandle(in);
    CloseHandle(out);
    if (result != copyCompleted) DeleteFileA(target);
    return result;
}

bool canOpenForWrite(const char* path)
{
    HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}
