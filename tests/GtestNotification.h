#pragma once
// GoogleTest's Notification is built on std::mutex and std::condition_variable,
// which the win32 thread model of this GCC lacks. This one, on a Win32 event,
// takes its place: forced into every file that includes GoogleTest's headers,
// with GTEST_HAS_NOTIFICATION_ set (tests/CMakeLists.txt).
#include <windows.h>

namespace testing {
namespace internal {
class Notification {
public:
    Notification() : event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~Notification() { CloseHandle(event); }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    void Notify() { SetEvent(event); }
    void WaitForNotification() { WaitForSingleObject(event, INFINITE); }

private:
    HANDLE event;
};
}  // namespace internal
}  // namespace testing
