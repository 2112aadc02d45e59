// tests/faults/fault_kinds.h - the system's services that can be made to fail.
#pragma once

#include <atomic>

namespace vatro::test {

enum FaultKind {
    Allocation,
    Mapping,
    ThreadStart,
    Opening,
    Reading,
    Writing,
    Renaming,
    FaultKinds
};

/// As the injector's order names them.
inline constexpr const char* faultKindName[FaultKinds] = {"allocation", "mapping", "thread", "open",
                                                          "read",       "write",   "rename"};

/// Calls of each kind so far. The injector keeps them in a file that both sides map, so that they
/// survive any end of the process.
using FaultCounts = std::atomic<unsigned>[FaultKinds];

}  // namespace vatro::test
