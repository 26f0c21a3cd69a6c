#include "ScenarioParser.h"

#include <cctype>
#include <cstdlib>

namespace scenario {
namespace {

// Argument shapes: i a number (an id, a row, milliseconds), w a word ("quoted"
// when it holds blanks), n an optional exit code, T the rest of the line, t the
// rest of the line if any.
struct Grammar {
    const char* verb;
    const char* shape;
};
const Grammar grammar[] = {
    {"program", "T"},         {"start", "t"},            {"frame", "T"},       {"end", "n"},
    {"expect-running", "i"},  {"page", "i"},             {"page-text", "T"},   {"click", "i"},
    {"click-page", "i"},      {"type", "it"},            {"pick", "ii"},       {"tick", "i"},
    {"untick", "i"},          {"box", "wwt"},            {"expect-enabled", "i"}, {"expect-disabled", "i"},
    {"expect-checked", "i"},  {"expect-unchecked", "i"}, {"expect-text", "it"},   {"shot", "w"},
    {"expect-file", "T"},     {"expect-no-file", "T"},   {"delete-tree", "T"},    {"reg-delete", "T"},
    {"reg-set", "wwT"},       {"expect-reg", "wwT"},     {"expect-log", "T"},     {"expect-no-log", "T"},
    {"unique", "ww"},         {"forget-account", ""},    {"expect-cookie", "wT"}, {"service", "wt"},
    {"expect-service", "wT"},
};

// Steps that stand for several, one line in a scenario for what most begin with.
struct Composite {
    const char* verb;
    std::vector<const char*> steps;
};
const Composite composites[] = {
    // A machine that never had the product, nor what a run ended by force
    // leaves (its run-in-progress flag, its extraction folder), nor an account.
    {"clean-machine",
     {"delete-tree C:\\Program Files\\TavRin", "reg-delete HKCR\\CLSID\\{16C7C243-7FA0-11D3-A0E4-0A02B9000000}",
      "reg-delete HKCR\\CLSID\\{16C7C244-7FA0-11D3-A0E4-0A02B9000000}",
      "reg-delete HKCR\\CLSID\\{16C7C245-7FA0-11D3-A0E4-0A02B9000000}",
      "reg-delete HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin",
      "reg-delete HKCU\\SOFTWARE\\Tavrin", "delete-tree %TEMP%\\tavrin", "forget-account"}},
    // The wizard's first page; Cancel, and the answer to its question.
    {"welcome-page", {"frame TavRin Installation - 3. 1. 0. 12", "page-text Click Next to continue."}},
    {"cancel-no",
     {"click 2", "box \"Abort Install\" No Are you sure you want to cancel this installation?", "expect-running 500"}},
    {"cancel-yes", {"click 2", "box \"Abort Install\" Yes Are you sure you want to cancel this installation?"}},
    // Finish with the readme and the browser left closed.
    {"finish-opening-nothing", {"untick 1018", "untick 1031", "click 2"}},
    // The program talks to the service named in the development override.
    {"use-service",
     {"reg-set HKCU\\SOFTWARE\\Tavrin\\Debug RegoServer "
      "%TAVRIN_SERVICE_URL%/servlet/bookmarks.servlet.install.registrationServlet",
      "reg-set HKCU\\SOFTWARE\\Tavrin\\Debug ImportServer "
      "%TAVRIN_SERVICE_URL%/servlet/bookmarks.servlet.install.ImportServlet"}},
};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Exit codes may be written negative (-1 for 0xFFFFFFFF); ids, rows and times not.
bool isNumber(const std::string& text, bool negative = false)
{
    size_t start = negative && !text.empty() && text[0] == '-' ? 1 : 0;
    if (text.size() == start) return false;
    for (size_t i = start; i < text.size(); ++i)
        if (text[i] < '0' || text[i] > '9') return false;
    return true;
}

std::string upper(std::string text)
{
    for (char& c : text) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    return text;
}

bool isFileName(const std::string& name)
{
    for (char c : name)
        if (!(isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == '.')) return false;
    return !name.empty();
}

// One argument of `shape` from `line` at `at`; false with `error` when it is not there.
bool readArgument(char shape, const std::string& line, size_t& at, Step& step, std::string& error)
{
    while (at < line.size() && isBlank(line[at])) ++at;
    if (shape == 'T' || shape == 't') {
        size_t end = line.size();
        while (end > at && isBlank(line[end - 1])) --end;
        std::string text = line.substr(at, end - at);
        at = line.size();
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
            text = text.substr(1, text.size() - 2);
        else if (text.empty() && shape == 't') return true;
        else if (text.empty()) return error = "a text is missing", false;
        step.args.push_back(text);
        return true;
    }
    if (at >= line.size()) {
        if (shape == 'n') return true;
        return error = "an argument is missing", false;
    }
    size_t end;
    std::string word;
    if (line[at] == '"') {
        end = line.find('"', at + 1);
        if (end == std::string::npos) return error = "a quote is not closed", false;
        word = line.substr(at + 1, end - at - 1);
        ++end;
    } else {
        for (end = at; end < line.size() && !isBlank(line[end]);) ++end;
        word = line.substr(at, end - at);
    }
    at = end;
    if ((shape == 'i' || shape == 'n') && !isNumber(word, shape == 'n'))
        return error = "'" + word + "' is not a number", false;
    step.args.push_back(word);
    return true;
}

bool parseLine(const std::string& line, Step& step, std::string& error)
{
    size_t at = 0;
    while (at < line.size() && !isBlank(line[at])) ++at;
    step.verb = line.substr(0, at);
    const Grammar* rule = nullptr;
    for (const Grammar& entry : grammar)
        if (step.verb == entry.verb) rule = &entry;
    if (!rule) return error = "unknown step '" + step.verb + "'", false;
    for (const char* shape = rule->shape; *shape; ++shape)
        if (!readArgument(*shape, line, at, step, error)) return false;
    while (at < line.size() && isBlank(line[at])) ++at;
    if (at < line.size()) return error = "more than the step takes: '" + line.substr(at) + "'", false;
    if (step.verb == "box" && !buttonId(step.args[1]))
        return error = "'" + step.args[1] + "' is no button (OK, Cancel, Yes, No or an id)", false;
    if (step.verb == "shot" && !isFileName(step.args[0]))
        return error = "a shot's name is letters, digits, '-', '_' and '.'", false;
    return true;
}
}  // namespace

int buttonId(const std::string& name)
{
    if (isNumber(name)) return std::atoi(name.c_str());
    const char* const labels[] = {"OK", "CANCEL", "ABORT", "RETRY", "IGNORE", "YES", "NO"};
    for (int i = 0; i < 7; ++i)
        if (upper(name) == labels[i]) return i + 1;  // IDOK 1 ... IDNO 7
    return 0;
}

std::vector<Step> parseScenario(const std::string& text, std::string& error)
{
    std::vector<Step> steps;
    size_t start = 0;
    for (int number = 1; start <= text.size(); ++number) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos || line[first] == '#') continue;
        size_t last = line.find_last_not_of(" \t\r");
        std::vector<std::string> sources = {line.substr(first, last - first + 1)};
        for (const Composite& composite : composites)
            if (sources[0] == composite.verb) sources.assign(composite.steps.begin(), composite.steps.end());
        for (const std::string& source : sources) {
            Step step;
            step.line = number;
            step.source = source;
            if (!parseLine(step.source, step, error)) {
                error = "line " + std::to_string(number) + ": " + error;
                return {};
            }
            steps.push_back(step);
        }
    }
    if (steps.empty()) error = "no steps";
    return steps;
}

}  // namespace scenario
