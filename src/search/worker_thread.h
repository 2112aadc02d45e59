// search/worker_thread.h - a thread that waits, runs its task when told to, and waits again.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "base/system_thread.h"

namespace vatro {

class Thread {
  public:
    virtual ~Thread() = default;
    /// What the thread does from its start to its end.
    virtual void run() = 0;
};

class WorkerThread : public Thread {
  public:
    /// Runs once per start; it must return soon after it was asked to.
    using Task = void (*)(unsigned index, void* argument);

    WorkerThread(unsigned threadIndex, Task work, void* taskArgument)
        : index(threadIndex), task(work), argument(taskArgument) {}
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    ~WorkerThread() override;

    void run() override;

    /// Makes the system thread. False when the system gives none. Once, before anything else.
    [[nodiscard]] bool create();
    /// Wakes the worker to run its task. The worker must be idle.
    void start();
    /// Returns when the worker is idle.
    void waitUntilIdle();
    /// Ends the system thread, which must be idle, and waits for its end.
    void quit();
    bool isBusy() const { return state != State::Idle; }

  protected:
    /// Called on the worker's thread each time it has become idle.
    virtual void onIdle() {}

    const unsigned index;

  private:
    enum class State : std::uint32_t { Idle, Running, Quit };

    Task task;
    void* argument;
    std::mutex mutex;
    std::condition_variable changed;        // of `state`
    std::atomic<State> state{State::Idle};  // written under the mutex
    SystemThread systemThread;
};

}  // namespace vatro
