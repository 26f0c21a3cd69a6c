#pragma once
// A second thread for the test programs and benchmarks. They are built with the
// same compilers as SETUP.EXE, whose win32 thread model has no std::thread in
// this GCC: a Win32 thread that runs a function and is joined.
#include <windows.h>

#include <functional>
#include <utility>

class CTestThread {
public:
    explicit CTestThread(std::function<void()> body) : body(std::move(body))
    {
        handle = CreateThread(nullptr, 0, run, this, 0, nullptr);
        // Without a thread the work is done here, so that nothing is left out.
        if (!handle) this->body();
    }
    // Unlike std::thread, joins rather than ends the program when left joinable.
    ~CTestThread() { join(); }
    CTestThread(const CTestThread&) = delete;
    CTestThread& operator=(const CTestThread&) = delete;

    bool joinable() const { return handle != nullptr; }
    void join()
    {
        if (!handle) return;
        WaitForSingleObject(handle, INFINITE);
        CloseHandle(handle);
        handle = nullptr;
    }

private:
    static DWORD WINAPI run(void* self)
    {
        static_cast<CTestThread*>(self)->body();
        return 0;
    }
    std::function<void()> body;
    HANDLE handle = nullptr;
};
