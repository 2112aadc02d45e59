// search/table_warmer.cpp - the warmer's thread and how it gives way.
#include "search/table_warmer.h"

namespace vatro {

void TableWarmer::start() {
    cancel();
    complete = false;
    cancelled = false;
    static_cast<void>(thread.start([this] { run(); }, SystemThread::SmallStackSize));
}

void TableWarmer::cancel() {
    {
        const std::lock_guard lock(mutex);
        cancelled = true;
        changed.notify_all();
    }
    thread.join();
}

void TableWarmer::setPaused(bool value) {
    const std::lock_guard lock(mutex);
    paused = value;
    changed.notify_all();
}

void TableWarmer::run() { complete = touchAll(transpositionTable) && touchAll(pawnHash); }

template <typename Table>
bool TableWarmer::touchAll(Table& table) {
    for (std::uint64_t offset = 0; offset < table.sizeInBytes(); offset += TableMemory::PageSize) {
        if (!mayGoOn()) return false;
        table.touch(offset);
    }
    return true;
}

bool TableWarmer::mayGoOn() {
    if (paused) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return !paused || cancelled; });
    }
    return !cancelled;
}

}  // namespace vatro
