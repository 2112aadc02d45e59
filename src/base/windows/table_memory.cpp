// base/windows/table_memory.cpp - zeroed blocks by VirtualAlloc.
//
// Large pages are for users with a privilege that nobody has by default, so they are not requested.
#include "base/table_memory.h"

#include "base/windows/system.h"

namespace vatro {

TableMemory::TableMemory(std::size_t bytes) {
    block = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    blockSize = bytes;
    aligned = block;
}

TableMemory::~TableMemory() {
    if (block) VirtualFree(block, 0, MEM_RELEASE);
}

}  // namespace vatro
