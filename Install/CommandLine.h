#pragma once

// What the first blank-separated token of the command line selects. Only that
// token counts: "/q/t" sets both switches, "/q /t" sets quiet alone.
struct CCommandLine {
    char firstToken[256];
    bool help;           // the token is "/?"
    bool quiet;          // the token holds "/q"
    bool troubleshooting;  // the token holds "/t"
    bool restart;        // the token is "-restart"
    char scriptPath[256];  // everything behind the first blank, unchanged
};

CCommandLine parseCommandLine(const char* commandLine);
