// setup.ini, generated and mutated, through the wizard's load with a cabinet
// list beside it: accepted with every value within its buffer, or refused
// with "Corrupt Installation" exactly when a file is not a member that
// extraction would have written.
#include <gtest/gtest.h>

#include "BoundedText.h"
#include "Fuzz.h"
#include "analysis/Versions.h"
#include "description/PathHelpers.h"
#include "description/ProfileLists.h"
#include "wizard/InstallWizard.h"

namespace {
const std::vector<std::string> iniTokens = {
    "[Install]", "[Files]", "[Defaults]", "[DetectKill]", "[CHECKREGISTRY]", "\r\n", "\n", "=", "TRUE",
    "%PROGRAMFILES%", "%TITLE%", "%WINSYSDIR%", "%", ",,,", "C:\\", "..\\", "\xEF\xBB\xBF", "\xFF\xFE"};
const std::vector<std::string> macros = {"%PROGRAMFILES%", "%TITLE%", "%WINSYSDIR%", "%title%\\", "%", "%%",
                                         "%UNKNOWN%", "%" + std::string(300, 'N') + "%", "C:\\", "..\\"};
const std::vector<std::string> booleans = {"TRUE", "true", "True", " TRUE", "1", "FALSE", "", "TRUEX", "yes"};
const std::vector<std::string> guids = {"", "{16C7C243-7FA0-11D3-A0E4-0A02B9000000}",
                                        "{00021401-0000-0000-C000-000000000046}", "{", "\\..\\..", "x"};
const std::vector<std::string> versions = {"5.00.2314.1003", "1, 0, 0, 7", "9.11.9600.18376", "-1.-2",
                                           "99999999999999999999.1", "1..2,,3", "junk", "", "+7.0x10.3.4.5.6"};

std::string anyCase(CFuzzRandom& random, const std::string& name)
{
    std::string out = name;
    for (char& c : out)
        if (random.percent(30)) c = static_cast<char>(c ^ (std::isalpha(static_cast<unsigned char>(c)) ? 0x20 : 0));
    return out;
}

// Printable text with odd bytes, macros and now and then a long run; line
// ends come only from the mutations.
std::string value(CFuzzRandom& random)
{
    std::string text;
    switch (random.below(6)) {
    case 0: break;
    case 1: text = "http://127.0.0.1:" + std::to_string(random.below(70000)) + "/" + random.text(random.length(40)); break;
    case 2: text = random.pick(iniTokens) + random.text(random.length(20)) + random.pick(iniTokens); break;
    case 3: text = std::string(random.length(3000), 'v'); break;
    default: text = random.text(random.length(60));
    }
    for (char& c : text)
        if (c == '\r' || c == '\n') c = ' ';
    return text;
}

std::string fileName(CFuzzRandom& random, int index)
{
    std::string stem = "F" + std::to_string(index);
    switch (random.below(10)) {
    case 0: return "C:\\" + stem + ".DLL";
    case 1: return "..\\" + stem + ".dll";
    case 2: return "sub\\" + stem + ".dll";
    case 3: return stem + std::string(200 + random.below(200), 'L') + ".dll";
    case 4: return stem + random.bytes(1 + random.below(4), "\x80\xE9\xFF !#%&'()+,;@^_`{}~") + ".exe";
    default: return stem + ".DLL";
    }
}

struct CIniModel {
    std::string text;
    std::vector<std::string> files;  // in key order
};

CIniModel generate(CFuzzRandom& random)
{
    CIniModel model;
    const char* eol = random.percent(80) ? "\r\n" : random.percent(50) ? "\n" : "\r";
    auto line = [&](const std::string& text) { model.text += text + eol; };
    static const char* const installKeys[] = {"TITLE",  "COMPANY",    "COPYRIGHT",   "PANEL",       "AGREEMENT",
                                              "README", "regoserver", "regocommand", "importserver"};
    line(anyCase(random, "[Install]"));
    for (const char* key : installKeys)
        if (random.percent(70)) line(anyCase(random, key) + "=" + value(random));
    if (random.percent(80)) line("[Defaults]" + std::string(eol) + "DefaultDir=" + random.pick(macros) + value(random));

    size_t count = random.percent(2) ? random.below(200) : random.below(6);
    if (count || random.percent(80)) line(anyCase(random, "[Files]"));
    for (size_t i = 0; i < count; ++i) {
        model.files.push_back(fileName(random, static_cast<int>(i)));
        line(model.files.back() + "=" + value(random));
    }
    for (const std::string& file : model.files) {
        if (random.percent(30)) continue;
        line("[" + file + "]");
        for (const char* key : {"AutoReg", "ACMREG", "Signed", "UpgradeCheck"})
            if (random.percent(60)) line(key + std::string("=") + random.pick(booleans));
        if (random.percent(40)) line("Destination=" + random.pick(macros) + value(random));
        if (random.percent(40)) line("RegGuid=" + random.pick(guids));
        if (random.percent(30)) line("Company=" + value(random));
    }
    for (const char* section : {"[DetectKill]", "[CHECKREGISTRY]"}) {
        if (random.percent(20)) continue;
        line(section);
        for (size_t n = random.percent(5) ? random.below(300) : random.below(4); n > 0; --n) {
            std::string fields;
            for (size_t f = random.below(8); f > 0; --f)
                fields += std::string(random.below(3), ',') + (random.percent(30) ? random.pick(versions) : value(random));
            line("K" + std::to_string(n) + "=" + fields);
        }
    }
    return model;
}

bool inCabinetList(const std::vector<CCabinetEntry>& entries, const std::string& name)
{
    for (const CCabinetEntry& entry : entries)
        if (equalsNoCase(entry.name.substr(0, 259).c_str(), name.substr(0, 259).c_str())) return true;
    return false;
}

class CDescriptionFuzz : public ::testing::Test {
protected:
    void SetUp() override
    {
        RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug");
        copyText(wizard.sourceFolder, folder.c_str(), sizeof wizard.sourceFolder);
    }
    void TearDown() override
    {
        DeleteFileA((folder + "\\setup.ini").c_str());
        RemoveDirectoryA(folder.c_str());
    }
    const std::string folder = fuzzFolder("desc");
    CInstallWizard wizard{false};
};
}  // namespace

TEST_F(CDescriptionFuzz, SetupDescriptions)
{
    int outcomes[2] = {0, 0};
    runCases("setup.ini", 250, [&](CFuzzRandom& random) {
        CIniModel model = generate(random);
        bool mutated = random.percent(40);
        if (mutated) model.text = random.mutate(model.text, iniTokens, 1 + static_cast<int>(random.below(8)), 200000);
        ASSERT_TRUE(writeBytes(folder + "\\setup.ini", model.text));

        // The cabinet lists most of the files, some in another case, and others.
        wizard.cabinet.entries.clear();
        for (const std::string& name : model.files) {
            if (random.percent(90)) wizard.cabinet.entries.push_back({anyCase(random, name), 0});
            if (isPlainMemberName(name.c_str()) && name.find('\\') == std::string::npos && name.size() < 120 &&
                random.percent(50))
                writeBytes(folder + "\\" + name, random.bytes(random.below(100)));
        }
        if (random.percent(20)) wizard.cabinet.entries.push_back({random.text(random.length(300)), 0});
        wizard.settings.files.clear();
        wizard.settings.detectKills.clear();
        wizard.settings.registryChecks.clear();

        // Boxes are costly: most cases count them without making them.
        const bool looked = random.percent(10);
        CBoxCatcher boxes(random.percent(50) ? IDYES : IDNO, !looked);
        int result = wizard.loadSettings();
        const CInstallSettings& s = wizard.settings;

        bool wellFormed = true;
        for (const CInstallFile& file : s.files)
            wellFormed = wellFormed && inCabinetList(wizard.cabinet.entries, file.fileName) &&
                         isPlainMemberName(file.fileName.c_str()) && folder.size() + 1 + file.fileName.size() < MAX_PATH;
        // A corrupt payload: one box and the end. Else one Yes/No box per newer
        // server registered on this machine, and the end on a No.
        bool refusedNewer = false;
        for (const std::string& box : boxes.seen) {
            if (looked) {
                EXPECT_EQ(0u, box.rfind(wellFormed ? "Found Newer Version:" : "Corrupt Installation:", 0)) << box;
            }
            refusedNewer = refusedNewer || (looked && boxes.yesNoAnswer == IDNO);
        }
        EXPECT_EQ(wellFormed && !refusedNewer, result == 1);
        ++outcomes[result == 1];
        if (!wellFormed) {
            EXPECT_EQ(1u, boxes.seen.size());
        }

        // Every value within its 1,024-byte read; a key list within its buffer.
        for (const std::string* text : {&s.title, &s.company, &s.copyright, &s.panel, &s.agreement, &s.readme,
                                        &s.regoServer, &s.regoCommand, &s.importServer, &s.destination})
            EXPECT_LE(text->size(), 1023u);
        EXPECT_EQ(0u, s.regoServer.find(s.serverRoot));
        EXPECT_LE(s.files.size(), 512u);
        EXPECT_LE(s.detectKills.size(), 512u);
        EXPECT_LE(s.registryChecks.size(), 512u);
        for (const CInstallFile& file : s.files) {
            EXPECT_LE(file.fileName.size(), 1022u);
            EXPECT_LE(file.destFolder.size(), 1023u);
            if (result != 1) continue;
            EXPECT_EQ(folder, file.sourceFolder);
            EXPECT_EQ(file.fixedDestination ? file.destFolder : s.destination, file.destFolder);
            std::string bytes;
            EXPECT_EQ(readBytes(folder + "\\" + file.fileName, bytes) ? bytes.size() : 0u, file.size);
        }
        // A description as generated, with a key list that fits, is read key for key.
        size_t listSize = 1;
        for (const std::string& name : model.files) listSize += name.size() + 1;
        if (!mutated && !model.files.empty() && listSize < 1024) {
            std::vector<std::string> read;
            for (const CInstallFile& file : s.files) read.push_back(file.fileName);
            EXPECT_EQ(model.files, read) << model.text;
        }

        for (const std::string& name : model.files)
            if (isPlainMemberName(name.c_str())) DeleteFileA((folder + "\\" + name).c_str());
    });
    EXPECT_GT(outcomes[0], 25) << "refused";
    EXPECT_GT(outcomes[1], 25) << "accepted";
}

// The readers behind the load, in memory and so by the thousand: key lists as
// the profile call fills its buffer (and buffers it never fills so), comma
// lists, booleans, versions with junk, and macros in buffers of any size.
TEST_F(CDescriptionFuzz, DescriptionReaders)
{
    runCases("setup.ini readers", 6000, [this](CFuzzRandom& random) {
        std::string list;
        for (size_t n = random.below(random.percent(10) ? 200 : 8); n > 0; --n) list += value(random).c_str() + std::string(1, '\0');
        list += '\0';
        if (random.percent(30)) list = random.mutate(list, iniTokens, 1 + static_cast<int>(random.below(5)), 4000);
        const size_t size = 1 + random.below(1024);
        list.resize(size, '\x01');  // a buffer full to its end, or cut without its zeros
        std::vector<std::string> expected;
        for (size_t start = 0, i = 0; i < size; ++i) {
            if (list[i]) continue;
            expected.push_back(list.substr(start, i - start));
            start = i + 1;
            if (i + 1 == size || !list[i + 1]) break;
        }
        std::vector<char> exact(list.begin(), list.end());
        exact.push_back('Z');  // a byte behind the buffer that would show if read
        EXPECT_EQ(expected, walkKeyList(exact.data(), size));

        const std::string text = random.percent(50) ? std::string(random.below(6), ',') + value(random).c_str()
                                                    : random.mutate(",a,,b,c", {",", ",,", " "}, 4).c_str();
        std::vector<std::string> fields;
        for (size_t at = 0; at <= text.size();) {
            size_t comma = std::min(text.find(',', at), text.size());
            if (comma > at) fields.push_back(text.substr(at, comma - at));
            at = comma + 1;
        }
        EXPECT_EQ(fields, splitCommaList(text.c_str()));
        EXPECT_EQ(equalsNoCase(text.c_str(), "TRUE"), profileBool(text.c_str()));

        // Versions order whatever their junk: reflexive, antisymmetric, transitive.
        const std::string a = random.pick(versions) + random.text(random.below(4)), b = random.pick(versions), c = text;
        EXPECT_EQ(0, compareVersions(a.c_str(), a.c_str()));
        EXPECT_EQ(compareVersions(a.c_str(), b.c_str()), -compareVersions(b.c_str(), a.c_str()));
        if (compareVersions(a.c_str(), b.c_str()) <= 0 && compareVersions(b.c_str(), c.c_str()) <= 0) {
            EXPECT_LE(compareVersions(a.c_str(), c.c_str()), 0);
        }

        // Macros: never a byte past the buffer; a text without one unchanged.
        std::string macroText;
        for (size_t n = random.below(5); n > 0; --n) macroText += random.pick(macros) + value(random).substr(0, 40);
        wizard.settings.title = random.percent(20) ? "%TITLE%x" : value(random);
        const size_t capacity = 1 + random.below(300);
        std::string buffer(capacity + 8, '\xAB');
        copyText(&buffer[0], macroText.c_str(), capacity);
        wizard.expandMacros(&buffer[0], capacity);
        EXPECT_EQ(std::string(8, '\xAB'), buffer.substr(capacity));
        EXPECT_LT(strnlen(buffer.c_str(), capacity), capacity);
        if (macroText.find('%') == std::string::npos) {
            EXPECT_EQ(macroText.substr(0, capacity - 1), buffer.c_str());
        }
    });
}

// A file that the cabinet lists but extraction never writes (a step up, a
// drive, a path too long for the folder) makes the payload corrupt.
TEST_F(CDescriptionFuzz, MembersOutsideTheFolderAreCorrupt)
{
    const std::string longName = std::string(MAX_PATH - folder.size() - 1, 'n');
    for (const std::string& name : {std::string("..\\..\\TAVRIN.DLL"), std::string("C:TAVRIN.DLL"),
                                    std::string("\\TAVRIN.DLL"), longName}) {
        ASSERT_TRUE(writeBytes(folder + "\\setup.ini", "[Files]\r\n" + name + "=x\r\n"));
        wizard.cabinet.entries = {{name, 0}};
        wizard.settings.files.clear();
        CBoxCatcher boxes;
        EXPECT_EQ(0, wizard.loadSettings()) << name;
        EXPECT_EQ(1u, boxes.seen.size()) << name;
    }
    wizard.cabinet.entries = {{"sub\\" + longName.substr(5), 0}};
    ASSERT_TRUE(writeBytes(folder + "\\setup.ini", "[Files]\r\n" + wizard.cabinet.entries[0].name + "=x\r\n"));
    wizard.settings.files.clear();
    CBoxCatcher boxes;
    EXPECT_EQ(1, wizard.loadSettings()) << "a member below the folder whose path fits";
    EXPECT_TRUE(boxes.seen.empty());
}
