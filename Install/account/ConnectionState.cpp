#include "account/ConnectionState.h"

#include <wininet.h>

#include <cstring>

#include "BoundedText.h"
#include "DeploymentConfig.h"
#include "SystemLibraries.h"

namespace {
BOOL systemConnectedState(DWORD* flags) { return systemDll::InternetGetConnectedState(flags, 0); }

BOOL systemQueryState(DWORD* state)
{
    DWORD size = sizeof *state;
    return systemDll::InternetQueryOptionA(nullptr, INTERNET_OPTION_CONNECTED_STATE, state, &size);
}

BOOL systemGoOnline()
{
    // The service's web root, with no path: the home page's URL less its slash.
    char root[260];
    copyText(root, TAVRIN_HOME_URL, sizeof root);
    size_t length = std::strlen(root);
    if (length > 7 && root[length - 1] == '/') root[length - 1] = 0;
    return systemDll::InternetGoOnlineA(root, GetActiveWindow(), 0);
}

BOOL systemAutodial() { return systemDll::InternetAutodial(INTERNET_AUTODIAL_FORCE_ONLINE, nullptr); }

const CConnectionCalls systemCalls = {systemConnectedState, systemQueryState, systemGoOnline,
                                      systemAutodial};
}  // namespace

const CConnectionCalls& systemConnectionCalls() { return systemCalls; }

bool connectionMissing() { return connectionMissing(systemCalls); }

bool connectionMissing(const CConnectionCalls& calls)
{
    DWORD flags = 0;
    calls.getConnectedState(&flags);
    DWORD state = 0;
    // A browser set offline by the user asks first, and nothing else is tried.
    if (calls.queryConnectedState(&state) && (state & INTERNET_STATE_DISCONNECTED_BY_USER))
        return !calls.goOnline();
    // A LAN counts as ready, without asking whether the service answers.
    if (flags & INTERNET_CONNECTION_LAN) return false;
    return !calls.autodial();
}
