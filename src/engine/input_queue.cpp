// engine/input_queue.cpp - handing lines from the reading thread to the command loop.
#include "engine/input_queue.h"

#include <utility>

#include "base/text.h"

namespace vatro {

InputQueue::Event InputQueue::next(InputLine& line) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return !lines.empty() || closed || woken; });
    if (!lines.empty()) {
        line = std::move(lines.front());
        lines.pop_front();
        changed.notify_all();
        return Event::Line;
    }
    if (closed) return Event::End;
    woken = false;
    return Event::Woken;
}

void InputQueue::wake() {
    const std::lock_guard lock(mutex);
    woken = true;
    changed.notify_all();
}

bool InputQueue::push(InputLine line) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return lines.size() < Capacity || abandoned; });
    if (abandoned) return false;
    if (!line.tooLong && trimLine(line.text) == "quit") noteEnd();
    lines.push_back(std::move(line));
    changed.notify_all();
    return true;
}

void InputQueue::close() {
    const std::lock_guard lock(mutex);
    closed = true;
    noteEnd();
    changed.notify_all();
}

void InputQueue::noteEnd() {
    if (endCame.load() == Never) endCame = Clock::now();
}

void InputQueue::abandon() {
    const std::lock_guard lock(mutex);
    abandoned = true;
    changed.notify_all();
}

}  // namespace vatro
