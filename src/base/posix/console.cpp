// base/posix/console.cpp - the standard streams by the calls of POSIX.
#include "base/console.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace vatro {

void setUpConsole() {}  // bytes pass through unchanged

bool inputIsTerminal() { return ::isatty(STDIN_FILENO) != 0; }

bool outputIsTerminal() { return ::isatty(STDOUT_FILENO) != 0; }

int readInput(int descriptor, int output, char* to, std::size_t size) {
    for (;;) {
        // Also waits where another process that shares the terminal or pipe has made it
        // non-blocking.
        pollfd ends[] = {{descriptor, POLLIN, 0}, {output, 0, 0}};
        const int ready = ::poll(ends, 2, -1);
        if (ready < 0 && errno == EINTR) continue;
        const bool outputIsDead = (ends[1].revents & (POLLERR | POLLHUP)) != 0;
        if (ready > 0 && outputIsDead && ends[0].revents == 0) return 0;
        const auto count = ::read(descriptor, to, size);
        if (count >= 0) return static_cast<int>(count);
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) return -1;
    }
}

}  // namespace vatro
