// The texts the setup reads: setup.ini through the wizard's load with a cabinet list beside it,
// accepted with every value within its buffer or refused with one box exactly when a file is not
// a member that extraction writes; the readers behind it; the command line; the restart folder.
#include <gtest/gtest.h>

#include <cstring>

#include "BoundedText.h"
#include "CommandLine.h"
#include "Fuzz.h"
#include "analysis/Versions.h"
#include "description/PathHelpers.h"
#include "description/ProfileLists.h"
#include "engine/RestartScript.h"
#include "wizard/InstallWizard.h"

namespace {
const Tokens iniTokens = {"[Install]", "[Files]", "[DetectKill]", "\r\n", "\n", "=", "TRUE", "%TITLE%", "%", ",,,",
                          "C:\\", "..\\", "\xEF\xBB\xBF", "\xFF\xFE"};
const Tokens macros = {"%PROGRAMFILES%", "%TITLE%", "%WINSYSDIR%", "%title%\\", "%%", "%UNKNOWN%",
                       "%" + std::string(300, 'N') + "%", "C:\\"};
const Tokens versions = {"5.00.2314.1003", "1, 0, 0, 7", "-1.-2", "99999999999999999999.1", "1..2,,3", "junk", ""};

std::string anyCase(CFuzzRandom& random, std::string name)
{
    for (char& c : name)
        if (std::isalpha(static_cast<unsigned char>(c)) && random.percent(30)) c ^= 0x20;
    return name;
}

// Printable text with odd bytes, macros and now and then a long run, on one line.
std::string value(CFuzzRandom& random)
{
    std::string text = Tokens{"", random.pick(iniTokens) + random.text(random.length(20)),
                              std::string(random.length(3000), 'v'), random.text(random.length(60))}[random.below(4)];
    for (char& c : text) c = c == '\r' || c == '\n' ? ' ' : c;
    return text;
}

// The text, and its member names in key order: some never written by extraction (a drive, a step up,
// a root, a path at or past MAX_PATH).
std::string generate(CFuzzRandom& random, size_t folderLength, std::vector<std::string>& files)
{
    const std::string eol = random.pick(Tokens{"\r\n", "\r\n", "\r\n", "\n", "\r"});
    std::string text = anyCase(random, "[Install]") + eol;
    for (const char* key :
         {"TITLE", "COMPANY", "COPYRIGHT", "PANEL", "AGREEMENT", "README", "regoserver", "regocommand", "importserver"})
        if (random.percent(70)) text += anyCase(random, key) + "=" + value(random) + eol;
    text += "[Defaults]" + eol + "DefaultDir=" + random.pick(macros) + value(random) + eol +
            anyCase(random, "[Files]") + eol;
    for (size_t i = 0, count = random.percent(2) ? random.below(200) : random.below(6); i < count; ++i) {
        const std::string stem = "F" + std::to_string(i);
        files.push_back(Tokens{random.pick(Tokens{"C:\\", "C:", "..\\", "\\", "sub\\..\\"}) + stem, "sub\\" + stem,
                               stem + std::string(MAX_PATH - folderLength - stem.size() - random.below(4), 'L'),
                               stem + random.bytes(1 + random.below(4), "\x80\xE9\xFF !#%&'()+,;@^_`{}~") + ".exe",
                               stem + ".DLL", stem + ".dll"}[random.below(6)]);
        text += files.back() + "=" + value(random) + eol;
    }
    for (const std::string& file : files) {
        text += "[" + file + "]" + eol;
        for (const char* key : {"AutoReg", "ACMREG", "Signed", "UpgradeCheck", "Destination", "RegGuid"})
            if (random.percent(50))
                text += key + ("=" + random.pick(Tokens{"TRUE", " true", "1", "", "{", "%TITLE%\\"})) + eol;
    }
    for (const std::string section : {"[DetectKill]", "[CHECKREGISTRY]"})  // lists of versions and junk
        for (size_t n = (text += section + eol, random.percent(5) ? random.below(300) : random.below(4)); n > 0; --n)
            text += "K" + std::to_string(n) + "=" + random.pick(versions) + std::string(random.below(3), ',') +
                    value(random) + eol;
    return text;
}

class CDescriptionFuzz : public ::testing::Test {
protected:
    void SetUp() override { copyText(wizard.sourceFolder, folder.c_str(), sizeof wizard.sourceFolder); }
    void TearDown() override { DeleteFileA((folder + "\\setup.ini").c_str()), RemoveDirectoryA(folder.c_str()); }
    const std::string folder = fuzzFolder("desc");
    CInstallWizard wizard{false};
};
}  // namespace

TEST_F(CDescriptionFuzz, SetupDescriptions)
{
    int outcomes[2] = {0, 0};
    runCases("setup.ini", 250, [&](CFuzzRandom& random) {
        std::vector<std::string> files, read;
        const std::string text = generate(random, folder.size(), files),
                          mutated = random.mutate(text, iniTokens, 40, 8, 200000);
        ASSERT_TRUE(writeBytes(folder + "\\setup.ini", mutated));
        wizard.cabinet.entries.clear();  // most of the files, some in another case, and others
        for (const std::string& name : files)
            if (random.percent(90)) wizard.cabinet.entries.push_back({anyCase(random, name), 0});
        if (random.percent(20)) wizard.cabinet.entries.push_back({random.text(random.length(300)), 0});
        wizard.settings.files.clear(), wizard.settings.detectKills.clear(), wizard.settings.registryChecks.clear();

        const int result = wizard.loadSettings();
        const CInstallSettings& s = wizard.settings;
        bool wellFormed = true;
        for (const CInstallFile& file : s.files) {
            const bool listed =
                std::any_of(wizard.cabinet.entries.begin(), wizard.cabinet.entries.end(), [&](const CCabinetEntry& e) {
                    return equalsNoCase(e.name.substr(0, 259).c_str(), file.fileName.substr(0, 259).c_str());
                });
            wellFormed = wellFormed && listed && isPlainMemberName(file.fileName.c_str()) &&
                         folder.size() + 1 + file.fileName.size() < MAX_PATH;
            read.push_back(file.fileName);
            EXPECT_LE(std::max(file.fileName.size() + 1, file.destFolder.size()), 1023u);
        }
        // A corrupt payload: one box and the end. (The Yes/No box of a newer
        // server registered here goes unanswered, and the load goes on.)
        EXPECT_EQ(wellFormed, result == 1);
        if (!wellFormed) { EXPECT_EQ(1, refusedDialogs); }
        ++outcomes[result == 1];
        // Every value within its 1,024-byte read; a key list within its buffer.
        for (const std::string* value : {&s.title, &s.company, &s.copyright, &s.panel, &s.agreement, &s.readme,
                                         &s.regoServer, &s.regoCommand, &s.importServer, &s.destination})
            EXPECT_LE(value->size(), 1023u);
        EXPECT_LE(std::max({s.files.size(), s.detectKills.size(), s.registryChecks.size()}), 512u);
        // A description as generated, with a key list that fits, is read key for key.
        size_t listSize = 1;
        for (const std::string& name : files) listSize += name.size() + 1;
        if (mutated == text && !files.empty() && listSize < 1024) { EXPECT_EQ(files, read) << text; }
    });
    EXPECT_GT(std::min(outcomes[0], outcomes[1]), 25) << outcomes[0] << " refused, " << outcomes[1] << " accepted";
}

// The readers behind the load, by the thousand: key lists as the profile call fills its buffer (and
// as it never does), versions with junk, and macros in buffers of any size.
TEST_F(CDescriptionFuzz, DescriptionReaders)
{
    runCases("setup.ini readers", 6000, [this](CFuzzRandom& random) {
        std::string list;
        for (size_t n = random.below(random.percent(10) ? 200 : 8); n > 0; --n)
            list += value(random).c_str() + std::string(1, '\0');
        list = random.mutate(list + '\0', iniTokens, 30, 5, 4000);
        const size_t size = 1 + random.below(1024);
        list.resize(size, '\x01');  // a buffer full to its end, or cut without its zeros
        std::vector<std::string> expected;  // up to an empty name after the first, or the end of the buffer
        for (size_t start = 0, zero; start < size && (start == 0 || list[start]); start = zero + 1) {
            if ((zero = list.find('\0', start)) >= size) break;
            expected.push_back(list.substr(start, zero - start));
        }
        EXPECT_EQ(expected, walkKeyList((list + 'Z').data(), size));  // the Z would show if read

        // Versions order whatever their junk: reflexive and antisymmetric.
        const std::string a = random.pick(versions) + random.text(random.below(4)), b = random.pick(versions);
        EXPECT_EQ(0, compareVersions(a.c_str(), a.c_str()));
        EXPECT_EQ(compareVersions(a.c_str(), b.c_str()), -compareVersions(b.c_str(), a.c_str()));

        // Macros: never a byte past the buffer; the title in place of its name.
        std::string macroText = random.percent(30) ? "%TITLE%" + value(random).substr(0, 40) : "";
        for (size_t n = random.below(5); n > 0; --n) macroText += random.pick(macros) + value(random).substr(0, 40);
        const std::string& title = wizard.settings.title = random.percent(20) ? "%TITLE%x" : value(random);
        const size_t capacity = 1 + random.below(300);
        std::string buffer(capacity + 8, '\xAB');
        copyText(&buffer[0], macroText.c_str(), capacity);
        wizard.expandMacros(&buffer[0], capacity);
        EXPECT_EQ(std::string(8, '\xAB'), buffer.substr(capacity));
        EXPECT_LT(strnlen(buffer.c_str(), capacity), capacity);
        const bool titled = macroText.find('%') == 0 && macroText.rfind('%') == 6 && macroText.size() < capacity &&
                            title.find('%') == std::string::npos;
        if (titled || macroText.find('%') == std::string::npos) {
            EXPECT_EQ((titled ? title.substr(0, 254) + macroText.substr(7) : macroText).substr(0, capacity - 1),
                      buffer.c_str());
        }
    });
}

// Every field within its buffer: the first token, its flags, and behind the first blank a restart's script.
TEST(Fuzz, CommandLines)
{
    const Tokens tokens = {"/q", "/Q", "/t", "/T", "/?", "-restart", "-RESTART",
                           " ",  "  ", "\t", "\"", "x",  "C:\\a.rss"};
    runCases("command line", 6000, [&](CFuzzRandom& random) {
        std::string line;
        for (size_t n = random.below(8); n > 0; --n)
            line += random.percent(85) ? random.pick(tokens) : random.text(random.length(300));
        line = random.mutate(line, tokens, 30, 4, 20000).c_str();  // the system hands over a zero-terminated text
        const CCommandLine parsed = parseCommandLine(line.c_str());
        const size_t blank = line.find(' ');
        std::string token = line.substr(0, blank), lower;
        if (token.size() > 255) token.resize(254);
        for (char c : token) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        ASSERT_LT(std::max(strnlen(parsed.firstToken, 256), strnlen(parsed.scriptPath, 256)), 256u);
        EXPECT_EQ(token, parsed.firstToken);
        const auto has = [&](const char* flag) { return lower.find(flag) != std::string::npos; };
        EXPECT_EQ((std::vector<bool>{lower == "/?", lower == "-restart", has("/q"), has("/t")}),
                  (std::vector<bool>{parsed.help, parsed.restart, parsed.quiet, parsed.troubleshooting}));
        EXPECT_EQ(parsed.restart && blank != std::string::npos ? line.substr(blank + 1, 255) : "", parsed.scriptPath);
    });
}

// A damaged Source= line must not send the restart run's removal elsewhere
// than the extraction folder that holds the script.
TEST(FuzzRegression, RestartRemovesOnlyTheFolderOfItsScript)
{
    const std::string folder = fuzzFolder("restart-source"), script = folder + "\\tavrin.rss";
    for (const std::string& same : {folder, folder + "\\", folder + "\\sub\\.."})
        EXPECT_TRUE(isScriptFolder(same.c_str(), script.c_str())) << same;
    for (const std::string& other :
         {folder.substr(0, folder.rfind('\\')), folder.substr(0, 3), std::string("Z:\\"), folder + "\\sub",
          folder.substr(0, folder.size() - 1), std::string(""), std::string("\\")})
        EXPECT_FALSE(isScriptFolder(other.c_str(), script.c_str())) << other;
    RemoveDirectoryA(folder.c_str());
}
