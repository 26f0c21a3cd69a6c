#pragma once
// What every family of the fuzz program shares: a seeded generator, a mutator
// of byte strings, the case loop that names the seed of a failing case, and a
// catcher of the message boxes the code under test shows on this thread.
//
// Replay one case:  TAVRIN_FUZZ_CASE=<seed> fuzz_tests --gtest_filter=<test>
//                   (both as printed with the failure, or with a crash)
// More cases:       TAVRIN_FUZZ_SCALE=10 fuzz_tests   (ten times each count)
// Other cases:      TAVRIN_FUZZ_SEED=<number> fuzz_tests
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// xorshift64*: small, fast and the same on every build.
class CFuzzRandom {
public:
    explicit CFuzzRandom(uint64_t seed) : state(seed ? seed : 0x9E3779B97F4A7C15ull) {}
    uint64_t next()
    {
        state ^= state >> 12;
        state ^= state << 25;
        state ^= state >> 27;
        return state * 0x2545F4914F6CDD1Dull;
    }
    // 0 to n - 1; 0 when n is 0.
    size_t below(size_t n) { return n ? static_cast<size_t>(next() % n) : 0; }
    bool percent(int chance) { return below(100) < static_cast<size_t>(chance); }
    // A length that is mostly small, sometimes near `limit`.
    size_t length(size_t limit);
    template <class T> const T& pick(const std::vector<T>& items) { return items[below(items.size())]; }

    // `count` bytes, each from `alphabet` or, without one, any byte.
    std::string bytes(size_t count, const std::string& alphabet = "");
    // Mostly printable text with now and then an odd byte (controls, 0x80 up).
    std::string text(size_t count);
    // `rounds` random edits of `data`: bit flips, odd bytes, odd 32-bit words,
    // insertions, deletions, repeated pieces, cuts, and tokens of the family.
    std::string mutate(std::string data, const std::vector<std::string>& tokens, int rounds,
                       size_t maxSize = 1 << 20);

private:
    uint64_t state;
};

// Runs `count` (times TAVRIN_FUZZ_SCALE) cases of `family`, each with its own
// seed. The first failing case stops the family and names its seed.
void runCases(const char* family, int count, const std::function<void(CFuzzRandom&)>& body);

// 32-bit little-endian word as 4 bytes.
std::string word32(uint32_t value);

// A folder of its own under the temp folder for this process, made if missing.
std::string fuzzFolder(const std::string& name);
bool writeBytes(const std::string& path, const std::string& data);
// The whole file, and false when it cannot be opened.
bool readBytes(const std::string& path, std::string& data);

// Answers, on this thread, every dialog the code under test shows while the
// catcher lives, as soon as it has its texts and before it is shown. A message
// box's text is recorded as "<caption>:<text>", the error list's as
// "<caption>[list]:<text>". Yes/No boxes get `yesNoAnswer`, all others OK.
// Each dialog still costs Wine some 20 to 90 ms for its windows; with
// `refuse` none is made, which is at once: "?" is recorded for each, and the
// code under test gets -1 from its call.
class CBoxCatcher {
public:
    explicit CBoxCatcher(int yesNoAnswer = IDYES, bool refuse = false);
    ~CBoxCatcher();
    CBoxCatcher(const CBoxCatcher&) = delete;
    CBoxCatcher& operator=(const CBoxCatcher&) = delete;

    std::vector<std::string> seen;
    int yesNoAnswer;
    bool refuse;

private:
    static LRESULT CALLBACK hook(int code, WPARAM wParam, LPARAM lParam);
    HHOOK handle;
    CBoxCatcher* outer;
};
