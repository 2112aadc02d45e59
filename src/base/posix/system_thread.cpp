// base/posix/system_thread.cpp - threads by way of POSIX, whose interface sets the size of the
// stack.
//
// The standard library's threads take the system's default, which a user may have set too low for a
// deep search.
#include "base/system_thread.h"

#include <new>
#include <pthread.h>
#include <utility>

#include "base/console.h"

namespace vatro {
namespace {

using Work = std::function<void()>;

void* runWork(void* argument) {
    const std::unique_ptr<Work> work(static_cast<Work*>(argument));
    try {
        (*work)();
    } catch (const std::bad_alloc&) {
        endWithoutMemory();
    }
    return nullptr;
}

bool create(pthread_t& thread, Work work, int detachState, std::size_t stackSize) {
    auto owned = std::unique_ptr<Work>(new (std::nothrow) Work(std::move(work)));
    pthread_attr_t attributes;
    if (!owned || pthread_attr_init(&attributes) != 0) return false;
    const bool created = pthread_attr_setstacksize(&attributes, stackSize) == 0 &&
                         pthread_attr_setdetachstate(&attributes, detachState) == 0 &&
                         pthread_create(&thread, &attributes, &runWork, owned.get()) == 0;
    pthread_attr_destroy(&attributes);
    if (created) static_cast<void>(owned.release());  // the thread's from here on
    return created;
}

}  // namespace

struct SystemThread::Handle {
    pthread_t thread;
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
    if (!fresh || !create(fresh->thread, std::move(work), PTHREAD_CREATE_JOINABLE, stackSize)) {
        return false;
    }
    handle = std::move(fresh);
    return true;
}

void SystemThread::join() {
    if (!handle) return;
    pthread_join(handle->thread, nullptr);
    handle.reset();
}

bool SystemThread::startDetached(std::function<void()> work, std::size_t stackSize) {
    pthread_t thread;
    return create(thread, std::move(work), PTHREAD_CREATE_DETACHED, stackSize);
}

}  // namespace vatro
