#pragma once
// The skeleton of every fuzz family: a seeded generator and mutator, and a case loop naming failing seeds.
//   Replay one case:  TAVRIN_FUZZ_CASE=<seed> fuzz_tests --gtest_filter=<test>
//   More cases:       TAVRIN_FUZZ_SCALE=10 fuzz_tests   (ten times each count)
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using Tokens = std::vector<std::string>;

// xorshift64*: small, fast and the same on every build.
struct CFuzzRandom {
    explicit CFuzzRandom(uint64_t seed) : state(seed ? seed : 0x9E3779B97F4A7C15ull) {}
    uint64_t next()
    {
        return state ^= state >> 12, state ^= state << 25, state ^= state >> 27, state * 0x2545F4914F6CDD1Dull;
    }
    size_t below(size_t n) { return n ? static_cast<size_t>(next() % n) : 0; }
    bool percent(int chance) { return below(100) < static_cast<size_t>(chance); }
    size_t length(size_t limit);  // mostly small, sometimes near `limit`
    template <class T> const T& pick(const std::vector<T>& items) { return items[below(items.size())]; }
    std::string bytes(size_t count, const std::string& alphabet = "");  // without an alphabet, any byte
    std::string text(size_t count);  // mostly printable, now and then a control or a byte from 0x80 up
    // In `chance` percent of calls, 1 to `rounds` edits: flips, odd bytes and words, cuts, repeats, tokens.
    std::string mutate(std::string data, const Tokens& tokens, int chance, int rounds, size_t maxSize = 1 << 20);
    uint64_t state;
};

// `count` (times TAVRIN_FUZZ_SCALE) cases, each with its own seed, up to the first that fails. From then on
// dialogs opened on this thread are counted, never made (each costs Wine 20 to 90 ms): the call gets -1.
void runCases(const char* family, int count, const std::function<void(CFuzzRandom&)>& body);
extern int refusedDialogs;  // in the case under way

// Little-endian, as the program's formats are.
inline std::string word32(uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); }
std::string fuzzFolder(const std::string& name);  // made under the temp folder, as long in every run
bool writeBytes(const std::string& path, const std::string& data);
