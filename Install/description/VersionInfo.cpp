#include "description/VersionInfo.h"

#include <windows.h>

#include <string>
#include <vector>

#include "BoundedText.h"
#include "SystemLibraries.h"
#include "description/InstallSettings.h"
#include "description/PathHelpers.h"

namespace {
// The version resource of `path`, empty when it has none.
std::vector<BYTE> versionBlock(const char* path)
{
    DWORD handle = 0;
    DWORD size = systemDll::GetFileVersionInfoSizeA(path, &handle);
    std::vector<BYTE> block(size);
    if (size == 0 || !systemDll::GetFileVersionInfoA(path, 0, size, block.data())) block.clear();
    return block;
}

// One string of the block 040904b0, cut at what the block really holds.
bool queryString(std::vector<BYTE>& block, const char* name, std::string& value)
{
    if (block.empty()) return false;
    std::string query = std::string("\\StringFileInfo\\040904b0\\") + name;
    char* text = nullptr;
    UINT length = 0;
    if (!systemDll::VerQueryValueA(block.data(), query.c_str(), reinterpret_cast<void**>(&text), &length) || !text)
        return false;
    const char* end = reinterpret_cast<const char*>(block.data() + block.size());
    if (text < reinterpret_cast<const char*>(block.data()) || text >= end) return false;
    size_t available = static_cast<size_t>(end - text);
    size_t n = 0;
    while (n < available && n < length && text[n]) ++n;
    value.assign(text, n);
    return true;
}
}  // namespace

int readVersionInfo(CInstallFile& file)
{
    char path[MAX_PATH];
    joinPath(file.sourceFolder.c_str(), file.fileName.c_str(), path, sizeof path);
    std::vector<BYTE> block = versionBlock(path);
    std::string value;
    if (queryString(block, "FileVersion", value)) file.version = value;
    if (queryString(block, "CompanyName", value)) {
        char company[1024];
        copyText(company, value.c_str(), sizeof company);
        file.company = trimSpaces(company);
    }
    return 1;
}

int getFileVersionText(const char* path, char* out, size_t capacity)
{
    copyText(out, "0.0.0.0", capacity);
    std::vector<BYTE> block = versionBlock(path);
    std::string value;
    if (queryString(block, "FileVersion", value)) copyText(out, value.c_str(), capacity);
    return 1;
}
