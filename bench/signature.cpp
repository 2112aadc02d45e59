// bench/signature.cpp - the nodes of the fixed positions: "signature [depth [expected nodes]]".
//
// A change that is meant to alter speed alone leaves the number as it is. Where another number is
// expected, the program fails.
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "search/fixed_search.h"

int main(int argc, char** argv) {
    const int depth = argc > 1 ? std::atoi(argv[1]) : 9;
    if (depth < 1) return EXIT_FAILURE;
    const auto start = std::chrono::steady_clock::now();
    const std::uint64_t nodes = vatro::fixedSearchNodes(static_cast<unsigned>(depth));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("depth %d: %llu nodes, %.0f nodes/s\n", depth,
                static_cast<unsigned long long>(nodes),
                static_cast<double>(nodes) / seconds.count());
    if (argc > 2 && nodes != std::strtoull(argv[2], nullptr, 10)) {
        std::printf("expected: %s nodes\n", argv[2]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
