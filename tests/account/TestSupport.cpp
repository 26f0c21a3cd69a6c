#include "TestSupport.h"

#include <wininet.h>

#include <cstdlib>
#include <cstring>

#include "UiDriver.h"
#include "resources/resource.h"

std::string serviceCall(const std::string& path, const char* form)
{
    const DWORD flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_COOKIES;
    std::string host = serviceUrl(), body;
    if (host.compare(0, 7, "http://") != 0) return body;
    host.erase(0, 7);
    HINTERNET session = InternetOpenA("tests", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
    HINTERNET connection = InternetConnectA(session, host.substr(0, host.find(':')).c_str(),
                                            static_cast<INTERNET_PORT>(atoi(host.c_str() + host.find(':') + 1)),
                                            "", "", INTERNET_SERVICE_HTTP, 0, 0);
    HINTERNET request = HttpOpenRequestA(connection, form ? "POST" : "GET", path.c_str(), nullptr,
                                         nullptr, nullptr, flags, 0);
    const char* type = "Content-Type: application/x-www-form-urlencoded";
    if (HttpSendRequestA(request, form ? type : nullptr, static_cast<DWORD>(-1),
                         const_cast<char*>(form), form ? static_cast<DWORD>(strlen(form)) : 0)) {
        char piece[4096];
        DWORD got = 0;
        while (InternetReadFile(request, piece, sizeof piece, &got) && got) body.append(piece, got);
    }
    InternetCloseHandle(request);
    InternetCloseHandle(connection);
    InternetCloseHandle(session);
    return body;
}

std::vector<std::string> jsonStrings(const std::string& json)
{
    std::vector<std::string> strings;
    for (size_t i = json.find('"'); i < json.size(); i = json.find('"', i + 1)) {
        std::string text;
        for (++i; i < json.size() && json[i] != '"'; ++i) {
            if (json[i] != '\\') {
                text += json[i];
            } else if (json[++i] == 'u') {
                text += static_cast<char>(strtoul(json.substr(i + 1, 4).c_str(), nullptr, 16));
                i += 4;
            } else {
                const char* plain = strchr("nrt", json[i]);
                text += plain ? "\n\r\t"[plain - "nrt"] : json[i];
            }
        }
        strings.push_back(text);
    }
    return strings;
}

int SeenRequest::count(const char* header) const
{
    int n = 0;
    for (const auto& h : headers) n += _stricmp(h.first.c_str(), header) == 0;
    return n;
}

std::vector<SeenRequest> lastRequests(int count)
{
    // The service's keys in order: method, path, query, headers as name and
    // value pairs, body, client, status.
    std::vector<std::string> s = jsonStrings(serviceCall("/__requests?last=" + std::to_string(count)));
    std::vector<SeenRequest> requests;
    for (size_t i = 0; i + 1 < s.size(); ++i) {
        if (s[i] == "method") requests.emplace_back();
        if (requests.empty()) continue;
        SeenRequest& r = requests.back();
        if (s[i] == "path") r.path = s[++i];
        if (s[i] == "query") r.query = s[++i];
        if (s[i] == "headers")
            for (++i; i + 1 < s.size() && s[i] != "body"; i += 2) r.headers.emplace_back(s[i], s[i + 1]);
        if (s[i] == "body") r.body = s[++i];
    }
    return requests;
}

CBoxAnswerer::CBoxAnswerer()
    : thread([this] {
          uidriver::WindowQuery query{"Error", GetCurrentProcessId(), false};
          while (!stopping) {
              HWND box = uidriver::findWindow(query);
              if (!box) {
                  Sleep(50);
                  continue;
              }
              seen.push_back(GetDlgItem(box, IDC_ERROR_LIST_TEXT)
                                 ? "list:" + uidriver::controlText(box, IDC_ERROR_LIST_TEXT)
                                 : "box:" + uidriver::messageText(box));
              uidriver::pressButton(box, IDOK);
              while (IsWindowVisible(box)) Sleep(20);
          }
      })
{
}

std::vector<std::string> CBoxAnswerer::stop()
{
    stopping = true;
    if (thread.joinable()) thread.join();
    return seen;
}
