#include "Fuzz.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "resources/resource.h"

size_t CFuzzRandom::length(size_t limit)
{
    switch (below(4)) {
    case 0: return below(8 < limit ? 8 : limit + 1);
    case 1: return below(64 < limit ? 64 : limit + 1);
    case 2: return below(limit + 1);
    default: return limit - below(limit < 4 ? limit + 1 : 4);  // near the limit
    }
}

std::string CFuzzRandom::bytes(size_t count, const std::string& alphabet)
{
    std::string out(count, '\0');
    for (char& c : out) c = alphabet.empty() ? static_cast<char>(next()) : alphabet[below(alphabet.size())];
    return out;
}

std::string CFuzzRandom::text(size_t count)
{
    std::string out(count, '\0');
    for (char& c : out) {
        size_t kind = below(20);
        c = static_cast<char>(kind == 0 ? 0x80 + below(128) : kind == 1 ? 1 + below(31) : 32 + below(95));
    }
    return out;
}

std::string CFuzzRandom::mutate(std::string data, const std::vector<std::string>& tokens, int rounds,
                                size_t maxSize)
{
    static const char oddBytes[] = {0, '\r', '\n', ' ', '\t', '%', '=', ';', ',', '[', ']', '\\', '.',
                                    '"', '\x7f', '\x80', '\xff'};
    static const uint32_t oddWords[] = {0, 1, 7, 31, 0x7F, 0xFF, 0x7FFFFFFF, 0x80000000u, 0xFFFFFFFFu,
                                        0xFFFFFFF0u, 4096, 4097, 65536};
    for (int r = 0; r < rounds; ++r) {
        size_t at = below(data.size() + 1);
        switch (below(9)) {
        case 0:
            if (!data.empty()) data[below(data.size())] ^= static_cast<char>(1 << below(8));
            break;
        case 1:
            if (!data.empty()) data[below(data.size())] = oddBytes[below(sizeof oddBytes)];
            break;
        case 2:
            if (data.size() >= 4) {
                uint32_t value = oddWords[below(sizeof oddWords / sizeof oddWords[0])];
                if (percent(30)) value = static_cast<uint32_t>(data.size() + below(9) - 4);
                data.replace(below(data.size() - 3), 4, word32(value));
            }
            break;
        case 3: data.insert(at, bytes(1 + below(8))); break;
        case 4: data.erase(at, 1 + length(64)); break;
        case 5:
            if (!data.empty()) {  // a piece repeated, now and then many times
                size_t from = below(data.size()), count = 1 + below(data.size() - from < 200 ? data.size() - from : 200);
                std::string piece = data.substr(from, count);
                size_t times = percent(10) ? 1 + below(2000) : 1 + below(3);
                std::string repeated;
                for (size_t i = 0; i < times && repeated.size() < maxSize; ++i) repeated += piece;
                data.insert(at, repeated);
            }
            break;
        case 6: data.resize(below(data.size() + 1)); break;
        case 7:
            if (!tokens.empty()) data.insert(at, pick(tokens));
            break;
        default: data.insert(at, text(length(300))); break;
        }
        if (data.size() > maxSize) data.resize(maxSize);
    }
    return data;
}

std::string word32(uint32_t value)
{
    return {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
            static_cast<char>(value >> 24)};
}

namespace {
// The case under way, named by the filter below if the process crashes in it.
char currentCase[256] = "";

LONG WINAPI reportCrash(EXCEPTION_POINTERS* crash)
{
    std::fprintf(stderr, "\nException 0x%08lx at %p in %s\n", crash->ExceptionRecord->ExceptionCode,
                 crash->ExceptionRecord->ExceptionAddress, currentCase);
    std::fflush(stderr);
    return EXCEPTION_EXECUTE_HANDLER;
}
}  // namespace

void runCases(const char* family, int count, const std::function<void(CFuzzRandom&)>& body)
{
    SetUnhandledExceptionFilter(reportCrash);
    const char* replay = std::getenv("TAVRIN_FUZZ_CASE");
    if (replay && *replay) {
        uint64_t seed = std::strtoull(replay, nullptr, 0);
        std::snprintf(currentCase, sizeof currentCase, "%s replaying seed %s", family, replay);
        SCOPED_TRACE(currentCase);
        CFuzzRandom random(seed);
        body(random);
        return;
    }
    const char* base = std::getenv("TAVRIN_FUZZ_SEED");
    const char* scale = std::getenv("TAVRIN_FUZZ_SCALE");
    uint64_t familySeed = base && *base ? std::strtoull(base, nullptr, 0) : 20240601;
    for (const char* p = family; *p; ++p) familySeed = familySeed * 131 + static_cast<unsigned char>(*p);
    if (scale && std::atoi(scale) > 0) count *= std::atoi(scale);
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    for (int i = 0; i < count; ++i) {
        CFuzzRandom mixer(familySeed + static_cast<uint64_t>(i) * 0x9E3779B97F4A7C15ull);
        uint64_t seed = mixer.next();
        char name[64];
        std::snprintf(name, sizeof name, "0x%016llx", static_cast<unsigned long long>(seed));
        std::snprintf(currentCase, sizeof currentCase, "%s case %d: replay with TAVRIN_FUZZ_CASE=%s --gtest_filter=%s.%s",
                      family, i, name, test->test_suite_name(), test->name());
        SCOPED_TRACE(currentCase);
        CFuzzRandom random(seed);
        body(random);
        if (::testing::Test::HasFailure()) return;
    }
    currentCase[0] = 0;
}

std::string fuzzFolder(const std::string& name)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    // The same length in every process, so that a case replays with the
    // same path lengths.
    char id[16];
    std::snprintf(id, sizeof id, "%08lu", GetCurrentProcessId());
    std::string folder = temp + name + id;
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

bool writeBytes(const std::string& path, const std::string& data)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool ok = WriteFile(file, data.data(), static_cast<DWORD>(data.size()), &written, nullptr);
    CloseHandle(file);
    return ok && written == data.size();
}

bool readBytes(const std::string& path, std::string& data)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    data.assign(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    bool ok = data.empty() || ReadFile(file, &data[0], static_cast<DWORD>(data.size()), &got, nullptr);
    CloseHandle(file);
    data.resize(got);
    return ok;
}

namespace {
thread_local CBoxCatcher* currentCatcher = nullptr;

std::string itemText(HWND dialog, int id)
{
    char text[4096] = "";
    GetDlgItemTextA(dialog, id, text, sizeof text);
    return text;
}
}  // namespace

CBoxCatcher::CBoxCatcher(int yesNoAnswer, bool refuse)
    : yesNoAnswer(yesNoAnswer),
      refuse(refuse),
      handle(SetWindowsHookExA(refuse ? WH_CBT : WH_CALLWNDPROCRET, hook, nullptr, GetCurrentThreadId())),
      outer(currentCatcher)
{
    currentCatcher = this;
}

CBoxCatcher::~CBoxCatcher()
{
    currentCatcher = outer;
    if (handle) UnhookWindowsHookEx(handle);
}

LRESULT CALLBACK CBoxCatcher::hook(int code, WPARAM wParam, LPARAM lParam)
{
    CBoxCatcher* catcher = currentCatcher;
    if (catcher && catcher->refuse && code == HCBT_CREATEWND) {
        const CREATESTRUCTA* create = reinterpret_cast<CBT_CREATEWNDA*>(lParam)->lpcs;
        if (reinterpret_cast<ULONG_PTR>(create->lpszClass) == 0x8002) {  // a dialog, #32770
            catcher->seen.push_back("?");
            return 1;  // not made
        }
    }
    // After a dialog's WM_INITDIALOG its texts stand; ended there, it is never shown.
    const CWPRETSTRUCT* call = reinterpret_cast<CWPRETSTRUCT*>(lParam);
    if (catcher && !catcher->refuse && code == HC_ACTION && call->message == WM_INITDIALOG) {
        HWND dialog = call->hwnd;
        char caption[256] = "";
        GetWindowTextA(dialog, caption, sizeof caption);
        bool list = GetDlgItem(dialog, IDC_ERROR_LIST_TEXT) != nullptr;
        catcher->seen.push_back(std::string(caption) + (list ? "[list]:" : ":") +
                                itemText(dialog, list ? IDC_ERROR_LIST_TEXT : 0xFFFF));
        EndDialog(dialog, GetDlgItem(dialog, IDYES) ? catcher->yesNoAnswer : IDOK);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}
