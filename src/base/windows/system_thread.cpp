// base/windows/system_thread.cpp - threads by the calls of Windows and its C library.
#include "base/system_thread.h"

#include <cstdint>
#include <new>
#include <process.h>
#include <utility>

#include "base/console.h"
#include "base/windows/system.h"

namespace vatro {
namespace {

using Work = std::function<void()>;

unsigned __stdcall runWork(void* argument) {
    const std::unique_ptr<Work> work(static_cast<Work*>(argument));
    try {
        (*work)();
    } catch (const std::bad_alloc&) {
        endWithoutMemory();
    }
    return 0;
}

/// The handle of a new thread; null when there is none.
HANDLE create(Work work, std::size_t stackSize) {
    auto owned = std::unique_ptr<Work>(new (std::nothrow) Work(std::move(work)));
    if (!owned) return nullptr;
    // Without the flag the whole stack would count as memory in use.
    const std::uintptr_t thread =
        _beginthreadex(nullptr, static_cast<unsigned>(stackSize), &runWork, owned.get(),
                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread != 0) static_cast<void>(owned.release());  // the thread's from here on
    return reinterpret_cast<HANDLE>(thread);
}

}  // namespace

struct SystemThread::Handle {
    HANDLE thread;
};

SystemThread::SystemThread() = default;
SystemThread::SystemThread(SystemThread&&) noexcept = default;

SystemThread& SystemThread::operator=(SystemThread&& other) noexcept {
    join();
    handle = std::move(other.handle);
    return *this;
}

SystemThread::~SystemThread() { join(); }

bool SystemThread::start(std::function<void()> work, std::size_t stackSize) {
    auto fresh = std::unique_ptr<Handle>(new (std::nothrow) Handle);
    if (!fresh) return false;
    fresh->thread = create(std::move(work), stackSize);
    if (!fresh->thread) return false;
    handle = std::move(fresh);
    return true;
}

void SystemThread::join() {
    if (!handle) return;
    WaitForSingleObject(handle->thread, INFINITE);
    CloseHandle(handle->thread);
    handle.reset();
}

bool SystemThread::startDetached(std::function<void()> work, std::size_t stackSize) {
    const HANDLE thread = create(std::move(work), stackSize);
    if (thread) CloseHandle(thread);
    return thread != nullptr;
}

}  // namespace vatro
