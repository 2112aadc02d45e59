// base/system_thread.h - a thread of the operating system, with a stack of a known size.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace vatro {

class SystemThread {
  public:
    /// Bytes. A search recurses up to 1023 plies deep and needs about 2 KB a ply (measured), some
    /// times that under a sanitizer; only the pages that are used take memory.
    static constexpr std::size_t StackSize = std::size_t{32} << 20;
    /// Bytes; for work that does not recurse.
    static constexpr std::size_t SmallStackSize = std::size_t{256} << 10;

    SystemThread();
    SystemThread(SystemThread&&) noexcept;
    SystemThread& operator=(SystemThread&&) noexcept;
    /// Waits for the end of the thread.
    ~SystemThread();

    /// Starts `work`. Only lack of memory may throw in it, and ends the process. False when the
    /// system gives no thread; nothing runs then. The thread must not be running.
    [[nodiscard]] bool start(std::function<void()> work, std::size_t stackSize = StackSize);
    bool isRunning() const { return handle != nullptr; }
    /// Waits for the end of the thread, if it runs.
    void join();

    /// Starts `work` on a thread that nobody waits for. False when the system gives none.
    [[nodiscard]] static bool startDetached(std::function<void()> work,
                                            std::size_t stackSize = StackSize);

  private:
    struct Handle;
    std::unique_ptr<Handle> handle;
};

}  // namespace vatro
