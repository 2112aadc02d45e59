// engine/input_reader.cpp - the reading thread.
#include "engine/input_reader.h"

#include <cerrno>
#include <thread>
#include <utility>

#ifdef _WIN32
#include <io.h>
#else
#include <poll.h>
#include <unistd.h>
#endif

namespace vatro {
namespace {

constexpr std::size_t BlockSize = 4096;  // bytes; a page

#ifdef _WIN32
/// Bytes read; 0 or less at the end.
int readBlock(int fileDescriptor, char* block) {
    return ::_read(fileDescriptor, block, static_cast<unsigned>(BlockSize));
}
#else
/// Bytes read; 0 or less at the end.
int readBlock(int fileDescriptor, char* block) {
    for (;;) {
        const auto count = ::read(fileDescriptor, block, BlockSize);
        if (count >= 0) return static_cast<int>(count);
        if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Another process has made the shared terminal or pipe non-blocking.
            pollfd input{fileDescriptor, POLLIN, 0};
            ::poll(&input, 1, -1);
        } else if (errno != EINTR) {
            return -1;
        }
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

void startInputReader(std::shared_ptr<InputQueue> queue, int fileDescriptor) {
    std::thread([queue = std::move(queue), fileDescriptor] {
        LineSplitter splitter(*queue);
        char block[BlockSize];
        for (int count = 0; (count = readBlock(fileDescriptor, block)) > 0;) {
            if (!splitter.feed({block, static_cast<std::size_t>(count)})) return;
        }
        splitter.finish();
    }).detach();
}

}  // namespace vatro
