// shell/input_reader.cpp - the reading thread.
#include "shell/input_reader.h"

#include <cerrno>
#include <utility>

#ifdef _WIN32
#include <io.h>
#else
#include <poll.h>
#include <unistd.h>
#endif

#include "base/system_thread.h"

namespace vatro {
namespace {

constexpr std::size_t BlockSize = 4096;  // bytes; a memory page

/// Bytes read; 0 or less at the end of input, or when nobody reads the output any more.
#ifdef _WIN32
int readBlock(int fileDescriptor, int /*output*/, char* block) {
    return ::_read(fileDescriptor, block, static_cast<unsigned>(BlockSize));
}
#else
int readBlock(int fileDescriptor, int output, char* block) {
    for (;;) {
        // Also waits where another process that shares the terminal or pipe has made it
        // non-blocking.
        pollfd ends[] = {{fileDescriptor, POLLIN, 0}, {output, 0, 0}};
        const int ready = ::poll(ends, 2, -1);
        if (ready < 0 && errno == EINTR) continue;
        const bool outputIsDead = (ends[1].revents & (POLLERR | POLLHUP)) != 0;
        if (ready > 0 && outputIsDead && ends[0].revents == 0) return 0;
        const auto count = ::read(fileDescriptor, block, BlockSize);
        if (count >= 0) return static_cast<int>(count);
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) return -1;
    }
}
#endif

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
        for (int count = 0; (count = readBlock(fileDescriptor, output, block)) > 0;) {
            if (!splitter.feed({block, static_cast<std::size_t>(count)})) return;
        }
        splitter.finish();
    };
    return SystemThread::startDetached(std::move(readAll), SystemThread::SmallStackSize);
}

}  // namespace vatro
