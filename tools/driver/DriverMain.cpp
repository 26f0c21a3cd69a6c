// driver.exe: acts as a user from a shell script.
//   driver wait   <caption> [seconds]            waits for the window, prints its texts
//   driver answer <caption> <button> [seconds]   waits, prints its texts, presses the button
//                                                (an id, or a label such as OK or Yes)
//   driver type   <caption> <id> <text>          types into an edit control
// Exit code 0 on success, 1 when the window did not appear, 2 on bad arguments.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UiDriver.h"

using namespace uidriver;

namespace {
void printWindow(HWND window)
{
    std::printf("caption: %s\n", windowText(window).c_str());
    std::string message = messageText(window);
    if (!message.empty()) std::printf("message: %s\n", message.c_str());
    for (const Control& control : listControls(window))
        std::printf("control %d %s%s%s [%ld,%ld %ldx%ld]: %s\n", control.id, control.className.c_str(),
                    control.visible ? "" : " (hidden)", control.enabled ? "" : " (disabled)",
                    control.rect.left, control.rect.top, control.rect.right - control.rect.left,
                    control.rect.bottom - control.rect.top, control.text.c_str());
}

bool isNumber(const char* text)
{
    if (!*text) return false;
    for (; *text; ++text)
        if (*text < '0' || *text > '9') return false;
    return true;
}

int usage()
{
    std::fprintf(stderr, "usage: driver wait <caption> [seconds] | answer <caption> <button> "
                         "[seconds] | type <caption> <id> <text>\n");
    return 2;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return usage();
    std::string verb = argv[1];
    WindowQuery query;
    query.caption = argv[2];
    if (verb == "type") {
        if (argc != 5) return usage();
        HWND window = waitForWindow(query, 10000);
        if (!window) return 1;
        return setControlText(window, std::atoi(argv[3]), argv[4]) ? 0 : 1;
    }
    int secondsArg = verb == "wait" ? 3 : 4;
    if (verb == "answer" && argc < 4) return usage();
    DWORD seconds = argc > secondsArg ? std::strtoul(argv[secondsArg], nullptr, 10) : 10;
    HWND window = waitForWindow(query, seconds * 1000);
    if (!window) {
        std::fprintf(stderr, "no window \"%s\" within %lu s\n", argv[2],
                     static_cast<unsigned long>(seconds));
        return 1;
    }
    printWindow(window);
    std::fflush(stdout);
    if (verb == "wait") return 0;
    if (verb != "answer") return usage();
    bool pressed = isNumber(argv[3]) ? pressButton(window, std::atoi(argv[3]))
                                     : pressButtonByLabel(window, argv[3]);
    return pressed ? 0 : 1;
}
