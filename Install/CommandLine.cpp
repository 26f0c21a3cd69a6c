#include "CommandLine.h"

#include <cstring>

#include "BoundedText.h"

CCommandLine parseCommandLine(const char* commandLine)
{
    CCommandLine parsed = {};
    if (!commandLine) commandLine = "";
    const char* blank = std::strchr(commandLine, ' ');  // a tab does not end the token
    size_t tokenLength = blank ? static_cast<size_t>(blank - commandLine) : std::strlen(commandLine);
    // A token of up to 255 characters is taken whole, a longer one is cut to 254.
    if (tokenLength > 255) tokenLength = 254;
    copyTextPart(parsed.firstToken, commandLine, tokenLength, sizeof parsed.firstToken);

    const char* token = parsed.firstToken;
    parsed.help = equalsNoCase(token, "/?");
    if (parsed.help) return parsed;
    parsed.quiet = containsNoCase(token, "/q");
    parsed.troubleshooting = containsNoCase(token, "/t");
    parsed.restart = equalsNoCase(token, "-restart");
    if (parsed.restart && blank) copyText(parsed.scriptPath, blank + 1, sizeof parsed.scriptPath);
    return parsed;
}
