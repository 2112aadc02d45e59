// search/worker_thread.cpp - the worker's loop and its handshakes.
#include "search/worker_thread.h"

namespace vatro {

WorkerThread::~WorkerThread() { quit(); }

void WorkerThread::run() {
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return state != State::Idle; });
        if (state == State::Quit) return;
        lock.unlock();
        task(index, argument);
        lock.lock();
        state = State::Idle;
        changed.notify_all();
        lock.unlock();
        onIdle();
        lock.lock();
    }
}

bool WorkerThread::create() {
    return systemThread.start([this] { run(); });
}

void WorkerThread::start() {
    const std::lock_guard lock(mutex);
    state = State::Running;
    changed.notify_all();
}

void WorkerThread::waitUntilIdle() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return state == State::Idle; });
}

void WorkerThread::quit() {
    if (!systemThread.isRunning()) return;
    waitUntilIdle();
    {
        const std::lock_guard lock(mutex);
        state = State::Quit;
        changed.notify_all();
    }
    systemThread.join();
    state = State::Idle;
}

}  // namespace vatro
