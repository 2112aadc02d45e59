// engine/unlocked.h - a scope in which a lock is let go.
#pragma once

#include <mutex>

namespace vatro {

/// Lets go of a lock that the caller holds, and takes it again at the end of the scope, however
/// that is left.
class Unlocked {
  public:
    explicit Unlocked(std::unique_lock<std::mutex>& held) : lock(held) { lock.unlock(); }
    ~Unlocked() { lock.lock(); }
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

  private:
    std::unique_lock<std::mutex>& lock;
};

}  // namespace vatro
