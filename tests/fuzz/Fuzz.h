#pragma once
// The skeleton of every fuzz family: a seeded generator and mutator, and the
// case loop that names the seed of a failing (or crashing) case.
//   Replay one case:  TAVRIN_FUZZ_CASE=<seed> fuzz_tests --gtest_filter=<test>
//   More cases:       TAVRIN_FUZZ_SCALE=10 fuzz_tests   (ten times each count)
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using Tokens = std::vector<std::string>;

// xorshift64*: small, fast and the same on every build.
class CFuzzRandom {
public:
    explicit CFuzzRandom(uint64_t seed) : state(seed ? seed : 0x9E3779B97F4A7C15ull) {}
    uint64_t next() { return state ^= state >> 12, state ^= state << 25, state ^= state >> 27, state * 0x2545F4914F6CDD1Dull; }
    size_t below(size_t n) { return n ? static_cast<size_t>(next() % n) : 0; }
    bool percent(int chance) { return below(100) < static_cast<size_t>(chance); }
    size_t length(size_t limit);  // mostly small, sometimes near `limit`
    template <class T> const T& pick(const std::vector<T>& items) { return items[below(items.size())]; }
    std::string bytes(size_t count, const std::string& alphabet = "");  // without an alphabet, any byte
    std::string text(size_t count);  // mostly printable, now and then a control or a byte from 0x80 up
    // In `chance` percent of calls, 1 to `rounds` edits: bit flips, odd bytes and words,
    // insertions, deletions, repeats, cuts, the family's tokens.
    std::string mutate(std::string data, const Tokens& tokens, int chance, int rounds, size_t maxSize = 1 << 20);

private:
    uint64_t state;
};

// `count` (times TAVRIN_FUZZ_SCALE) cases, each with its own seed, up to the first that
// fails. Dialogs opened on this thread are counted and never made (each would cost Wine
// 20 to 90 ms): the call that opens one gets -1.
void runCases(const char* family, int count, const std::function<void(CFuzzRandom&)>& body);
extern int refusedDialogs;  // in the case under way

std::string word32(uint32_t value);  // little-endian
std::string fuzzFolder(const std::string& name);  // made under the temp folder, as long in every run
bool writeBytes(const std::string& path, const std::string& data);
