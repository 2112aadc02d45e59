// program/main.cpp - the program: prints what an argument asks for, or runs the front end that is
// spoken to.
#include <chrono>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "base/console.h"
#include "base/process.h"
#include "base/text.h"
#include "base/version.h"
#include "engine/wb_engine.h"
#include "search/fixed_search.h"
#include "shell/input_reader.h"
#include "uci/uci_engine.h"

namespace {

using namespace vatro;
using Args = std::vector<std::string>;

// File descriptors; fixed by POSIX and by Windows' C library.
constexpr int StandardInput = 0;
constexpr int StandardOutput = 1;

constexpr char usage[] =
    "usage: vatro [-cores N]\n"
    "       vatro bench [DEPTH] | --version | --help\n"
    "A chess engine for XBoard, for UCI interfaces and for the terminal: commands come from\n"
    "standard input.\n"
    "\n"
    "  -cores N       search with N threads\n"
    "  bench [DEPTH]  search fixed positions (default depth: 10), print nodes and speed, and end\n"
    "  --version      print the version and end\n"
    "  --help         print this text and end\n";

/// Prints "N nodes N nps", which test frameworks look for.
int bench(const Args& args) {
    constexpr int DefaultDepth = 10;
    const int depth = args.size() > 1 ? readNumber(args[1]) : DefaultDepth;
    if (depth < 1 || depth > static_cast<int>(Searcher::MaxDepth) || args.size() > 2) {
        say(usage);
        return EXIT_FAILURE;
    }
    const auto start = std::chrono::steady_clock::now();
    const std::uint64_t nodes = fixedSearchNodes(static_cast<unsigned>(depth));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    say(formatted("%llu nodes %.0f nps\n", static_cast<unsigned long long>(nodes),
                  static_cast<double>(nodes) / seconds.count()));
    return nodes > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// False when there is no memory or no thread for a search.
template <typename Engine>
bool runEngine(Engine& engine, const Args& args) {
    engine.startUp(args);
    if (engine.isReady()) engine.runCommandLoop();
    return engine.isReady();
}

/// Speaks the WinBoard protocol, or UCI when the first line asks for it.
int converse(const Args& args) {
    useOneHeap();
    const auto input = std::make_shared<InputQueue>();
    // Before the tables, which can do with less memory than its stack.
    if (!startInputReader(input, StandardInput, StandardOutput)) {
        say("# ERROR: no thread for the input\n");
        return EXIT_FAILURE;
    }
    // The engines hold boards, too large for a small stack.
    auto engine = std::make_unique<WBEngine>(input);
    const bool isReady = runEngine(*engine, args);
    if (!engine->uciIsRequested()) return isReady ? EXIT_SUCCESS : EXIT_FAILURE;
    engine.reset();
    return runEngine(*std::make_unique<UciEngine>(input), args) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(const Args& args) {
    const std::string first = args.empty() ? "" : args[0];
    if (first == "bench") return bench(args);
    if (first != "--version" && first != "--help") return converse(args);
    say(first == "--help" ? usage : std::string(ProgramTitle) + '\n');
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char* argv[]) {
    try {
        setUpConsole();
        return run(argc > 0 ? Args(argv + 1, argv + argc) : Args());
    } catch (const std::bad_alloc&) {
        vatro::endWithoutMemory();
    }
}
