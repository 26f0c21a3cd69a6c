#include "TestSupport.h"

#include <windows.h>
#include <wininet.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "UiDriver.h"
#include "resources/resource.h"

std::string serviceUrl()
{
    const char* url = std::getenv("TAVRIN_SERVICE_URL");
    std::string text = url ? url : "";
    while (!text.empty() && text.back() == '/') text.pop_back();
    return text;
}

std::string registrationUrl()
{
    return serviceUrl() + "/servlet/bookmarks.servlet.install.registrationServlet";
}

ServiceAnswer serviceCall(const char* verb, const std::string& path, const std::string& form)
{
    ServiceAnswer answer;
    std::string url = serviceUrl() + path;
    char host[260] = "";
    char object[1024] = "";
    URL_COMPONENTSA parts = {};
    parts.dwStructSize = sizeof parts;
    parts.lpszHostName = host;
    parts.dwHostNameLength = sizeof host;
    parts.lpszUrlPath = object;
    parts.dwUrlPathLength = sizeof object;
    if (!InternetCrackUrlA(url.c_str(), 0, 0, &parts)) return answer;
    HINTERNET session = InternetOpenA("account-tests", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
    HINTERNET connection = InternetConnectA(session, host, parts.nPort, "", "", INTERNET_SERVICE_HTTP, 0, 0);
    // The URL's query is asked for too: the control paths read it.
    std::string target = object;
    const char* query = std::strchr(url.c_str() + 7, '?');
    if (query) target += query;
    HINTERNET request = HttpOpenRequestA(connection, verb, target.c_str(), nullptr, nullptr, nullptr,
                                         INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                                             INTERNET_FLAG_NO_COOKIES,
                                         0);
    const char* type = "Content-Type: application/x-www-form-urlencoded\r\n";
    if (request && HttpSendRequestA(request, form.empty() ? nullptr : type, static_cast<DWORD>(-1),
                                    const_cast<char*>(form.data()), static_cast<DWORD>(form.size()))) {
        DWORD size = sizeof answer.status;
        HttpQueryInfoA(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &answer.status, &size,
                       nullptr);
        char piece[4096];
        DWORD got = 0;
        while (InternetReadFile(request, piece, sizeof piece, &got) && got) answer.body.append(piece, got);
    }
    if (request) InternetCloseHandle(request);
    if (connection) InternetCloseHandle(connection);
    if (session) InternetCloseHandle(session);
    return answer;
}

void addFault(const std::string& form)
{
    ServiceAnswer answer = serviceCall("POST", "/__fault", form);
    if (answer.status != 200) std::fprintf(stderr, "fault refused: %s\n", answer.body.c_str());
}

void clearFaults() { serviceCall("POST", "/__clear", "x=1"); }

std::vector<std::string> jsonStrings(const std::string& json)
{
    std::vector<std::string> strings;
    for (size_t i = 0; i < json.size(); ++i) {
        if (json[i] != '"') continue;
        std::string text;
        for (++i; i < json.size() && json[i] != '"'; ++i) {
            char c = json[i];
            if (c != '\\' || i + 1 >= json.size()) {
                text += c;
                continue;
            }
            char e = json[++i];
            switch (e) {
            case 'n': text += '\n'; break;
            case 'r': text += '\r'; break;
            case 't': text += '\t'; break;
            case 'b': text += '\b'; break;
            case 'f': text += '\f'; break;
            case 'u':
                if (i + 4 < json.size()) {
                    text += static_cast<char>(std::strtoul(json.substr(i + 1, 4).c_str(), nullptr, 16));
                    i += 4;
                }
                break;
            default: text += e;
            }
        }
        strings.push_back(text);
    }
    return strings;
}

int SeenRequest::headerCount(const char* name) const
{
    int count = 0;
    for (const auto& h : headers)
        if (_stricmp(h.first.c_str(), name) == 0) ++count;
    return count;
}

std::string SeenRequest::header(const char* name) const
{
    for (const auto& h : headers)
        if (_stricmp(h.first.c_str(), name) == 0) return h.second;
    return "";
}

std::vector<SeenRequest> lastRequests(int count)
{
    // Keys come in the service's order: method, path, query, headers (name and
    // value pairs), body, client, status.
    std::vector<std::string> s =
        jsonStrings(serviceCall("GET", "/__requests?last=" + std::to_string(count)).body);
    std::vector<SeenRequest> requests;
    for (size_t i = 0; i + 1 < s.size(); ++i) {
        if (s[i] == "method") requests.emplace_back();
        if (requests.empty()) continue;
        SeenRequest& r = requests.back();
        if (s[i] == "method") r.method = s[++i];
        else if (s[i] == "path") r.path = s[++i];
        else if (s[i] == "query") r.query = s[++i];
        else if (s[i] == "body") r.body = s[++i];
        else if (s[i] == "headers")
            for (++i; i + 1 < s.size() && s[i] != "body"; i += 2) r.headers.emplace_back(s[i], s[i + 1]);
        if (i < s.size() && s[i] == "body") r.body = s[++i];
    }
    return requests;
}

std::string freshUserName(const char* prefix)
{
    char name[64];
    std::snprintf(name, sizeof name, "%s%lx%lx", prefix, GetCurrentProcessId(), GetTickCount());
    return name;
}

CBoxAnswerer::CBoxAnswerer(const char* boxCaption, int pressed)
    : caption(boxCaption), button(pressed), thread([this] {
          uidriver::WindowQuery query;
          query.caption = caption;
          query.processId = GetCurrentProcessId();
          for (;;) {
              HWND box = uidriver::findWindow(query);
              if (!box) {
                  if (stopping) return;
                  Sleep(50);
                  continue;
              }
              if (GetDlgItem(box, IDC_ERROR_LIST_TEXT))
                  seen.push_back("list:" + uidriver::controlText(box, IDC_ERROR_LIST_TEXT));
              else
                  seen.push_back("box:" + uidriver::messageText(box));
              uidriver::pressButton(box, button);
              while (IsWindow(box) && IsWindowVisible(box)) Sleep(20);
          }
      })
{
}

CBoxAnswerer::~CBoxAnswerer()
{
    if (thread.joinable()) stop();
}

std::vector<std::string> CBoxAnswerer::stop()
{
    stopping = true;
    thread.join();
    return seen;
}

std::string runSelf(const std::string& arguments, const std::vector<std::string>& environment,
                    DWORD* exitCode)
{
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    std::string command = std::string("\"") + self + "\" " + arguments;

    // This process's environment with the given variables added or replaced.
    std::vector<std::string> variables;
    char* block = GetEnvironmentStringsA();
    for (char* p = block; *p; p += std::strlen(p) + 1) {
        std::string entry = p;
        bool replaced = false;
        for (const std::string& e : environment)
            if (_strnicmp(entry.c_str(), e.c_str(), e.find('=') + 1) == 0) replaced = true;
        if (!replaced) variables.push_back(entry);
    }
    FreeEnvironmentStringsA(block);
    variables.insert(variables.end(), environment.begin(), environment.end());
    std::string childEnvironment;
    for (const std::string& v : variables) childEnvironment += v + '\0';
    childEnvironment += '\0';

    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE readEnd, writeEnd;
    CreatePipe(&readEnd, &writeEnd, &inherit, 0);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = writeEnd;
    start.hStdError = writeEnd;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process = {};
    std::string output;
    if (CreateProcessA(nullptr, &command[0], nullptr, nullptr, TRUE, 0, &childEnvironment[0], nullptr,
                       &start, &process)) {
        CloseHandle(writeEnd);
        char piece[512];
        DWORD got = 0;
        while (ReadFile(readEnd, piece, sizeof piece, &got, nullptr) && got) output.append(piece, got);
        WaitForSingleObject(process.hProcess, INFINITE);
        if (exitCode) GetExitCodeProcess(process.hProcess, exitCode);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    } else {
        CloseHandle(writeEnd);
    }
    CloseHandle(readEnd);
    return output;
}
