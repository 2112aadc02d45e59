// shell/input_reader.cpp - the reading thread.
#include "shell/input_reader.h"

#include <utility>

#include "base/console.h"
#include "base/system_thread.h"

namespace vatro {
namespace {

constexpr std::size_t BlockSize = 4096;  // bytes; a memory page

}  // namespace

void LineSplitter::append(std::string_view bytes) {
    if (bytes.empty()) return;
    started = true;
    const std::size_t space = InputLine::MaxLength - line.text.size();
    line.text.append(bytes.substr(0, space));
    if (bytes.size() > space) line.tooLong = true;
}

bool LineSplitter::feed(std::string_view bytes) {
    for (std::size_t end = 0; (end = bytes.find('\n')) != std::string_view::npos;) {
        append(bytes.substr(0, end));
        bytes.remove_prefix(end + 1);
        if (!queue.push(std::exchange(line, {}))) return false;
        started = false;
    }
    append(bytes);
    return true;
}

void LineSplitter::finish() {
    if (started) queue.push(std::exchange(line, {}));
    queue.close();
}

bool startInputReader(std::shared_ptr<InputQueue> queue, int fileDescriptor, int output) {
    auto readAll = [queue = std::move(queue), fileDescriptor, output] {
        LineSplitter splitter(*queue);
        char block[BlockSize];
        for (int count = 0; (count = readInput(fileDescriptor, output, block, BlockSize)) > 0;) {
            if (!splitter.feed({block, static_cast<std::size_t>(count)})) return;
        }
        splitter.finish();
    };
    return SystemThread::startDetached(std::move(readAll), SystemThread::SmallStackSize);
}

}  // namespace vatro
