// base/windows/table_memory.cpp - zeroed blocks by VirtualAlloc.
//
// Large pages are for users with a privilege that nobody has by default, so they are not requested.
#include "base/table_memory.h"

#include <algorithm>

#include "base/windows/system.h"

namespace vatro {

TableMemory::TableMemory(std::size_t bytes) {
    blockSize = std::max<std::size_t>(bytes, 1);  // a block of no bytes would be refused
    block = VirtualAlloc(nullptr, blockSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    aligned = block;
}

TableMemory::~TableMemory() {
    if (block) VirtualFree(block, 0, MEM_RELEASE);
}

}  // namespace vatro
