#include "Fuzz.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

size_t CFuzzRandom::length(size_t limit)
{
    const size_t kind = below(4), caps[] = {7, 63, limit};  // or, the fourth kind, near the limit
    return kind < 3 ? below(std::min(caps[kind], limit) + 1) : limit - below(std::min<size_t>(limit, 3) + 1);
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
    for (char& c : out)
        c = static_cast<char>(percent(5) ? (percent(50) ? 0x80 + below(128) : 1 + below(31)) : 32 + below(95));
    return out;
}

std::string CFuzzRandom::mutate(std::string data, const Tokens& tokens, int chance, int rounds, size_t maxSize)
{
    static const char oddBytes[] = "\0\r\n \t%=;,[]\\.\"\x7f\x80\xff";
    static const uint32_t oddWords[] = {0, 1, 7, 31, 0x7F, 0xFF, 0x7FFFFFFF, 0x80000000u, 0xFFFFFFFFu, 4096, 65536};
    if (!percent(chance)) return data;
    for (size_t r = 1 + below(rounds); r > 0; --r) {
        size_t at = below(data.size() + 1);
        switch (data.empty() ? 3 + below(6) : below(9)) {
        case 0: data[below(data.size())] ^= static_cast<char>(1 << below(8)); break;
        case 1: data[below(data.size())] = oddBytes[below(sizeof oddBytes - 1)]; break;
        case 2:  // an odd length word, or one near the data's own length
            if (data.size() >= 4)
                data.replace(below(data.size() - 3), 4,
                             word32(percent(30) ? data.size() + below(9) - 4 : oddWords[below(11)]));
            break;
        case 3: data.insert(at, bytes(1 + below(8))); break;
        case 4: data.erase(at, 1 + length(64)); break;
        case 5: data.resize(below(data.size() + 1)); break;
        case 6: data.insert(at, tokens.empty() ? "" : pick(tokens)); break;
        case 7: data.insert(at, text(length(300))); break;
        default: {  // a piece repeated, now and then many times
            std::string piece = data.substr(below(data.size()), 1 + below(200)), repeated;
            for (size_t i = percent(10) ? 1 + below(2000) : 1 + below(3); i > 0 && repeated.size() < maxSize; --i)
                repeated += piece;
            data.insert(at, repeated);
        }
        }
        if (data.size() > maxSize) data.resize(maxSize);
    }
    return data;
}

static char currentCase[256] = "";  // named if the process crashes in it
int refusedDialogs = 0;

static LRESULT CALLBACK refuseDialogs(int code, WPARAM wParam, LPARAM lParam)
{
    const bool dialog =
        code == HCBT_CREATEWND &&  // of the class #32770
        reinterpret_cast<ULONG_PTR>(reinterpret_cast<CBT_CREATEWNDA*>(lParam)->lpcs->lpszClass) == 0x8002;
    return dialog ? (++refusedDialogs, 1) : CallNextHookEx(nullptr, code, wParam, lParam);
}

static LONG WINAPI reportCrash(EXCEPTION_POINTERS* crash)
{
    return std::fprintf(stderr, "\nException 0x%08lx in %s\n", crash->ExceptionRecord->ExceptionCode, currentCase),
           std::fflush(stderr), EXCEPTION_EXECUTE_HANDLER;
}

void runCases(const char* family, int count, const std::function<void(CFuzzRandom&)>& body)
{
    SetUnhandledExceptionFilter(reportCrash);
    [[maybe_unused]] static const HHOOK hook = SetWindowsHookExA(WH_CBT, refuseDialogs, nullptr, GetCurrentThreadId());
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    const char *replay = std::getenv("TAVRIN_FUZZ_CASE"), *scale = std::getenv("TAVRIN_FUZZ_SCALE");
    count = replay && *replay ? 1 : count * std::max(1, scale ? std::atoi(scale) : 1);
    uint64_t familySeed = 20240601;
    for (const char* p = family; *p; ++p) familySeed = familySeed * 131 + static_cast<unsigned char>(*p);
    for (int i = 0; i < count && !::testing::Test::HasFailure(); ++i) {
        const uint64_t seed = replay && *replay ? std::strtoull(replay, nullptr, 0)
                                                : CFuzzRandom(familySeed + i * 0x9E3779B97F4A7C15ull).next();
        std::snprintf(currentCase, sizeof currentCase,
                      "%s case %d: replay with TAVRIN_FUZZ_CASE=0x%016llx --gtest_filter=%s.%s", family, i,
                      static_cast<unsigned long long>(seed), test->test_suite_name(), test->name());
        SCOPED_TRACE(currentCase);
        CFuzzRandom random(seed);
        refusedDialogs = 0;
        body(random);
    }
    currentCase[0] = 0;
}

std::string fuzzFolder(const std::string& name)
{
    char temp[MAX_PATH], id[16];
    GetTempPathA(sizeof temp, temp);
    std::snprintf(id, sizeof id, "%08lu", GetCurrentProcessId());  // a case replays with the same path lengths
    return CreateDirectoryA((temp + name + id).c_str(), nullptr), temp + name + id;
}

bool writeBytes(const std::string& path, const std::string& data)
{
    std::ofstream out(path, std::ios::binary);
    return out.write(data.data(), static_cast<std::streamsize>(data.size())).flush().good();
}
