#pragma once
#include <windows.h>

// The platform calls by which connectionMissing judges the machine. The
// system's are the default; a test hands in its own answers, since Wine
// always reports a connected LAN.
struct CConnectionCalls {
    BOOL (*getConnectedState)(DWORD* flags);
    BOOL (*queryConnectedState)(DWORD* state);  // INTERNET_OPTION_CONNECTED_STATE
    BOOL (*goOnline)();
    BOOL (*autodial)();
};

const CConnectionCalls& systemConnectionCalls();

// True when the machine could not be brought online. May put up the system's
// go-online or dial-up dialog, and blocks while it stands.
bool connectionMissing();
bool connectionMissing(const CConnectionCalls& calls);
