#pragma once
#include <string>
#include <vector>

// Reading a scenario: one step a line, `#` starts a comment line. Plain text in,
// steps out; nothing here touches a window or a file.
//   click 1001
//   box "Create Folder" Yes The folder 'C:\Program Files\TavRin' does not exist. ...
// A word holding blanks is "quoted"; a step's trailing text runs to the end of
// the line as written (quotes around all of it are taken off, for "" or blanks).
namespace scenario {

struct Step {
    int line = 0;
    std::string source;             // the line as written, for the report
    std::string verb;
    std::vector<std::string> args;  // an optional trailing text is present only when written
};

// The steps of a scenario text. On a bad line: empty, with `error` naming it.
std::vector<Step> parseScenario(const std::string& text, std::string& error);

// A message box button: OK, Cancel, Abort, Retry, Ignore, Yes, No (any case) or
// its id; 0 for anything else.
int buttonId(const std::string& name);

}  // namespace scenario
