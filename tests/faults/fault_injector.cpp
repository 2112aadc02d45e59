// tests/faults/fault_injector.cpp - preloaded into a program, makes one call of the system fail.
//
// Reads from the environment when it is loaded:
//   VATRO_FAULT         KIND:N makes the N-th call of that kind fail, KIND:N+ all from the N-th on
//   VATRO_FAULT_COUNTS  a file as large as FaultCounts, where the calls are counted
//
// Needs glibc: its allocation functions have second names, so that ours need no look-up, which
// would allocate; and its streams let us set their error flag.
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "faults/fault_kinds.h"

extern "C" {
// glibc's names. NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}

namespace {

using namespace vatro::test;

struct Order {
    int kind = -1;
    unsigned first = 0;
    bool allFromThere = false;
};

Order order;
FaultCounts* counts = nullptr;  // null: nothing is counted yet, nothing fails

/// Counts a call. True, with errno set, when it has to fail.
bool fails(FaultKind kind, int error) {
    if (!counts) return false;
    const unsigned number = (*counts)[kind].fetch_add(1, std::memory_order_relaxed) + 1;
    if (order.kind != kind || number < order.first) return false;
    if (number > order.first && !order.allFromThere) return false;
    errno = error;
    return true;
}

bool streamFails(FaultKind kind, std::FILE* stream) {
    if (!fails(kind, EIO)) return false;
    stream->_flags |= _IO_ERR_SEEN;
    return true;
}

/// The system's own function.
template <typename Function>
Function* next(Function*& known, const char* name) {
    if (!known) known = reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
    return known;
}

decltype(::pthread_create)* realPthreadCreate;
decltype(::fopen)* realFopen;
decltype(::opendir)* realOpendir;
decltype(::read)* realRead;
decltype(::pread)* realPread;
decltype(::fread)* realFread;
decltype(::fgets)* realFgets;
decltype(::write)* realWrite;
decltype(::fwrite)* realFwrite;
decltype(::fputs)* realFputs;
decltype(::fflush)* realFflush;
decltype(::rename)* realRename;

void findSystemFunctions() {
    next(realPthreadCreate, "pthread_create");
    next(realFopen, "fopen");
    next(realOpendir, "opendir");
    next(realRead, "read");
    next(realPread, "pread");
    next(realFread, "fread");
    next(realFgets, "fgets");
    next(realWrite, "write");
    next(realFwrite, "fwrite");
    next(realFputs, "fputs");
    next(realFflush, "fflush");
    next(realRename, "rename");
}

void readOrder(const char* text) {
    const char* const colon = std::strchr(text, ':');
    for (int kind = 0; colon && kind < FaultKinds; ++kind) {
        const std::size_t length = std::strlen(faultKindName[kind]);
        if (text + length != colon || std::strncmp(text, faultKindName[kind], length) != 0)
            continue;
        char* end = nullptr;
        order.first = static_cast<unsigned>(std::strtoul(colon + 1, &end, 10));
        order.allFromThere = *end == '+';
        order.kind = kind;
    }
}

void* systemMap(void* at, std::size_t size, int access, int flags, int file, off_t from) {
    return reinterpret_cast<void*>(::syscall(SYS_mmap, at, size, access, flags, file, from));
}

[[gnu::constructor]] void load() {
    findSystemFunctions();
    if (const char* const text = std::getenv("VATRO_FAULT")) readOrder(text);
    const char* const path = std::getenv("VATRO_FAULT_COUNTS");
    const int file =
        path ? static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC)) : -1;
    void* const shared =
        systemMap(nullptr, sizeof(FaultCounts), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (shared == MAP_FAILED) std::abort();  // the test would take no fault for a passed one
    counts = static_cast<FaultCounts*>(shared);
}

int openFile(int directory, const char* path, int flags, mode_t mode) {
    if (fails(Opening, EMFILE)) return -1;
    return static_cast<int>(::syscall(SYS_openat, directory, path, flags, mode));
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
    return fails(Allocation, ENOMEM) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return fails(Allocation, ENOMEM) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    return fails(Allocation, ENOMEM) ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return fails(Allocation, ENOMEM) ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    *block = aligned_alloc(alignment, size);
    return *block ? 0 : ENOMEM;
}

void* mmap(void* at, std::size_t size, int access, int flags, int file, off_t from) noexcept {
    return fails(Mapping, ENOMEM) ? MAP_FAILED : systemMap(at, size, access, flags, file, from);
}

int pthread_create(pthread_t* thread,
                   const pthread_attr_t* attributes,
                   void* (*run)(void*),
                   void* argument) noexcept {
    if (fails(ThreadStart, EAGAIN)) return EAGAIN;
    return next(realPthreadCreate, "pthread_create")(thread, attributes, run, argument);
}

int open(const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openFile(AT_FDCWD, path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openFile(directory, path, flags, mode);
}

std::FILE* fopen(const char* path, const char* mode) {
    return fails(Opening, EMFILE) ? nullptr : next(realFopen, "fopen")(path, mode);
}

DIR* opendir(const char* path) {
    return fails(Opening, EMFILE) ? nullptr : next(realOpendir, "opendir")(path);
}

ssize_t read(int file, void* to, std::size_t size) {
    return fails(Reading, EIO) ? -1 : next(realRead, "read")(file, to, size);
}

ssize_t pread(int file, void* to, std::size_t size, off_t from) {
    return fails(Reading, EIO) ? -1 : next(realPread, "pread")(file, to, size, from);
}

std::size_t fread(void* to, std::size_t size, std::size_t count, std::FILE* stream) {
    return streamFails(Reading, stream) ? 0 : next(realFread, "fread")(to, size, count, stream);
}

char* fgets(char* to, int size, std::FILE* stream) {
    return streamFails(Reading, stream) ? nullptr : next(realFgets, "fgets")(to, size, stream);
}

ssize_t write(int file, const void* from, std::size_t size) {
    return fails(Writing, ENOSPC) ? -1 : next(realWrite, "write")(file, from, size);
}

std::size_t fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* stream) {
    return streamFails(Writing, stream) ? 0 : next(realFwrite, "fwrite")(from, size, count, stream);
}

int fputs(const char* text, std::FILE* stream) {
    return streamFails(Writing, stream) ? EOF : next(realFputs, "fputs")(text, stream);
}

int fflush(std::FILE* stream) {
    // Without a stream the C library flushes all of them.
    if (stream && streamFails(Writing, stream)) return EOF;
    return next(realFflush, "fflush")(stream);
}

int rename(const char* from, const char* to) noexcept {
    return fails(Renaming, EIO) ? -1 : next(realRename, "rename")(from, to);
}

}  // extern "C"
