#include "account/InternetErrorText.h"

#include <wininet.h>

#include <cstdio>

#include "BoundedText.h"
#include "SystemLibraries.h"

namespace {
const char* fixedText(DWORD code)
{
    switch (code) {
    case 12001: return "Internal Error.  Could not create handle.";
    case 12002: return "The request has timed out.";
    case 12004: return "An Internal error has occured.";
    case 12005: return "The URL is invalid.";
    case 12006: return "The URL scheme could not be recognized, or is not supported.";
    case 12007: return "The servername could not be resolved.";
    case 12008: return "The requested protocol could not be located.";
    case 12009: return "The request specified invalid options.";
    case 12010: return "The length of the option supplied is incorrect for the type of option.";
    case 12011: return "The requested option could not be set.";
    case 12012: return "The internet connection is begin shut down or unloaded.";
    case 12013: return "The user name is incorrect for this connection.";
    case 12014: return "The password is incorrect for this connection.";
    case 12015: return "The request to login to the server has failed.";
    case 12016: return "The requested operation is invalid.";
    case 12017: return "The operation was cancelled.";
    case 12018: return "The type of handle is incorrect for this operation.";
    case 12019:
        return "The requested operation cannot be carried out because the handle supplies is not "
               "in the correct state.";
    case 12020: return "The request to the proxy was invalid.";
    case 12021: return "The required registry entry could not be located.";
    case 12022: return "The required registrt entry is invalid.";
    case 12023: return "Direct network access cannot be made at this time.";
    case 12024: return "Internal Error: No context.";
    case 12025: return "Internal Error: No callback.";
    case 12026:
        return "The operation could not be completed because one or more requests are pending.";
    case 12027: return "The format of the request is invalid.";
    case 12028: return "The requested item could not be located.";
    case 12029: return "The attempt to connect to the server failed.";
    case 12030: return "The connection with the server has been terminated.";
    case 12031: return "The connection with the server has been reset.";
    case 12033: return "The request to the proxy is invalid.";
    case 12036: return "Internal Error: Handle already exists.";
    case 12037:
        return "SSL certificate date that received from the server us bad. The certificate is "
               "expired.";
    case 12038: return "SSL certificate common name is incorrect.";
    case 12039:
    case 12040: return "The application is moving from a non-SSL to an SSL connection.";
    case 12041: return "The content is not entirely secure.";
    case 12042:
        return "The application is positing and attempting to change multiple lines of text on a "
               "server that is not secure.";
    case 12043: return "The application is posting to a server that is not secure.";
    case 12044: return "The server is request client authenication.";
    case 12045: return "Unfamiliar Certificate Authority.";
    case 12046: return "Client Authorization is not setup on this computer.";
    case 12047: return "The application could not start an asynchronous thread.";
    case 12048: return "Could no handle redirection because the scheme changed.";
    // These have no sentence of their own: the message is the constant's name.
    case 12052:
    case 12053:
    case 12054:
    case 12055:
    case 12056:
    case 12057: return internetErrorConstant(code);
    default: return nullptr;
    }
}
}  // namespace

const char* internetErrorConstant(DWORD code)
{
    switch (code) {
    case 12001: return "ERROR_INTERNET_OUT_OF_HANDLES";
    case 12002: return "ERROR_INTERNET_TIMEOUT";
    case 12003: return "ERROR_INTERNET_EXTENDED_ERROR";
    case 12004: return "ERROR_INTERNET_INTERNAL_ERROR";
    case 12005: return "ERROR_INTERNET_INVALID_URL";
    case 12006: return "ERROR_INTERNET_UNRECOGNIZED_SCHEME";
    case 12007: return "ERROR_INTERNET_NAME_NOT_RESOLVED";
    case 12008: return "ERROR_INTERNET_PROTOCOL_NOT_FOUND";
    case 12009: return "ERROR_INTERNET_INVALID_OPTION";
    case 12010: return "ERROR_INTERNET_BAD_OPTION_LENGTH";
    case 12011: return "ERROR_INTERNET_OPTION_NOT_SETTABLE";
    case 12012: return "ERROR_INTERNET_SHUTDOWN";
    case 12013: return "ERROR_INTERNET_INCORRECT_USER_NAME";
    case 12014: return "ERROR_INTERNET_INCORRECT_PASSWORD";
    case 12015: return "ERROR_INTERNET_LOGIN_FAILURE";
    case 12016: return "ERROR_INTERNET_INVALID_OPERATION";
    case 12017: return "ERROR_INTERNET_OPERATION_CANCELLED";
    case 12018: return "ERROR_INTERNET_INCORRECT_HANDLE_TYPE";
    case 12019: return "ERROR_INTERNET_INCORRECT_HANDLE_STATE";
    case 12020: return "ERROR_INTERNET_NOT_PROXY_REQUEST";
    case 12021: return "ERROR_INTERNET_REGISTRY_VALUE_NOT_FOUND";
    case 12022: return "ERROR_INTERNET_BAD_REGISTRY_PARAMETER";
    case 12023: return "ERROR_INTERNET_NO_DIRECT_ACCESS";
    case 12024: return "ERROR_INTERNET_NO_CONTEXT";
    case 12025: return "ERROR_INTERNET_NO_CALLBACK";
    case 12026: return "ERROR_INTERNET_REQUEST_PENDING";
    case 12027: return "ERROR_INTERNET_INCORRECT_FORMAT";
    case 12028: return "ERROR_INTERNET_ITEM_NOT_FOUND";
    case 12029: return "ERROR_INTERNET_CANNOT_CONNECT";
    case 12030: return "ERROR_INTERNET_CONNECTION_ABORTED";
    case 12031: return "ERROR_INTERNET_CONNECTION_RESET";
    case 12032: return "ERROR_INTERNET_FORCE_RETRY";
    case 12033: return "ERROR_INTERNET_INVALID_PROXY_REQUEST";
    case 12034: return "ERROR_INTERNET_NEED_UI";
    case 12036: return "ERROR_INTERNET_HANDLE_EXISTS";
    case 12037: return "ERROR_INTERNET_SEC_CERT_DATE_INVALID";
    case 12038: return "ERROR_INTERNET_SEC_CERT_CN_INVALID";
    case 12039: return "ERROR_INTERNET_HTTP_TO_HTTPS_ON_REDIR";
    case 12040: return "ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR";
    case 12041: return "ERROR_INTERNET_MIXED_SECURITY";
    case 12042: return "ERROR_INTERNET_CHG_POST_IS_NON_SECURE";
    case 12043: return "ERROR_INTERNET_POST_IS_NON_SECURE";
    case 12044: return "ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED";
    case 12045: return "ERROR_INTERNET_INVALID_CA";
    case 12046: return "ERROR_INTERNET_CLIENT_AUTH_NOT_SETUP";
    case 12047: return "ERROR_INTERNET_ASYNC_THREAD_FAILED";
    case 12048: return "ERROR_INTERNET_REDIRECT_SCHEME_CHANGE";
    case 12049: return "ERROR_INTERNET_DIALOG_PENDING";
    case 12050: return "ERROR_INTERNET_RETRY_DIALOG";
    case 12052: return "ERROR_INTERNET_HTTPS_HTTP_SUBMIT_REDIR";
    case 12053: return "ERROR_INTERNET_INSERT_CDROM";
    case 12054: return "ERROR_INTERNET_FORTEZZA_LOGIN_NEEDED";
    case 12055: return "ERROR_INTERNET_SEC_CERT_ERRORS";
    case 12056: return "ERROR_INTERNET_SEC_CERT_NO_REV";
    case 12057: return "ERROR_INTERNET_SEC_CERT_REV_FAILED";
    default: return nullptr;
    }
}

void internetErrorName(DWORD code)
{
    if (const char* name = internetErrorConstant(code)) OutputDebugStringA(name);
}

void internetErrorText(DWORD code, std::string& text, const char* responseInfo)
{
    if (const char* fixed = fixedText(code)) {
        text = fixed;
        return;
    }
    if (code == ERROR_INTERNET_EXTENDED_ERROR) {
        char info[1024] = "";
        if (!responseInfo) {
            DWORD number = 0;
            DWORD length = sizeof info;
            if (!systemDll::InternetGetLastResponseInfoA(&number, info, &length)) info[0] = 0;
            info[sizeof info - 1] = 0;
            responseInfo = info;
        }
        // An empty response would make an empty box, which ERRORMSG passes over.
        if (*responseInfo) {
            text = responseInfo;
            return;
        }
    }
    char number[64];
    formatText(number, sizeof number, "An internal error has occured(%ld)", static_cast<long>(code));
    text = number;
}
