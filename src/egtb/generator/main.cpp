// src/egtb/generator/main.cpp - vatro-tbgen: makes, checks and describes tablebases.
#include <atomic>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "egtb/generator/generator.h"
#include "egtb/generator/loaded_table.h"
#include "egtb/generator/progress.h"
#include "egtb/generator/verify.h"
#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

constexpr int ExitUsage = 2;

constexpr char usage[] =
    "usage: vatro-tbgen [OPTION]... [ENDING]...\n"
    "Makes endgame tables, with the smaller ones that they need. Finished tables are kept.\n"
    "\n"
    "  ENDING        an ending of three to five pieces, such as KRPKR\n"
    "  --pieces N    all endings of up to N pieces, 3 to 5\n"
    "  --out DIR     the directory of the tables (default: the current one)\n"
    "  --threads N   threads to use (default: as many as the machine has)\n"
    "  --verify      do not make tables; check each position against its moves\n"
    "  --stats       do not make tables; print wins, draws, losses and the longest mates\n"
    "  --help        print this text\n";

struct Options {
    std::vector<Material> endings;  // named ones
    int pieces = 0;                 // 0: none but the named ones
    std::string directory = ".";
    int threads = 0;
    bool verifies = false;
    bool printsStatistics = false;
    bool printsHelp = false;
};

std::atomic<bool> isInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // it is set by a signal handler

void interrupt(int) { isInterrupted = true; }

/// Reads a whole number between bounds.
bool readNumber(const char* text, int least, int most, int& number) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < least || value > most) return false;
    number = static_cast<int>(value);
    return true;
}

/// False with a line in `error` when an argument makes no sense.
bool readOptions(int argc, char** argv, Options& options, std::string& error) {
    constexpr int MostThreads = 1024;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool takesValue =
            argument == "--pieces" || argument == "--out" || argument == "--threads";
        if (takesValue && i + 1 == argc) {
            error = argument + " needs a value";
            return false;
        }
        bool isGood = true;
        if (argument == "--pieces") {
            isGood = readNumber(argv[++i], 3, MaxPieces, options.pieces);
        } else if (argument == "--threads") {
            isGood = readNumber(argv[++i], 1, MostThreads, options.threads);
        } else if (argument == "--out") {
            options.directory = argv[++i];
        } else if (argument == "--verify") {
            options.verifies = true;
        } else if (argument == "--stats") {
            options.printsStatistics = true;
        } else if (argument == "--help") {
            options.printsHelp = true;
        } else if (const auto material = parseMaterial(argument)) {
            options.endings.push_back(*material);
        } else {
            error = "neither an option nor an ending: " + argument;
            return false;
        }
        if (!isGood) {
            error = argument + " does not take " + argv[i];
            return false;
        }
    }
    if (options.printsHelp) return true;
    if (options.pieces == 0 && options.endings.empty()) error = "no ending given";
    return error.empty();
}

double workOf(const Material& material) {
    return static_cast<double>(makeHeader(material, DefaultBlockBits).valueCount());
}

/// Calls `task` for each ending under the eyes of the user.
template <typename Task>
bool forEachEnding(const std::vector<Material>& list, Task task) {
    double total = 0;
    for (const Material& material : list) {
        total += workOf(material);
    }
    Progress progress(total);
    for (const Material& material : list) {
        progress.beginTask(material.name(), workOf(material));
        std::string error;
        if (task(material, progress, error)) continue;
        progress.clearBar();
        std::fflush(stdout);
        std::fprintf(stderr, "vatro-tbgen: %s\n", error.c_str());
        return false;
    }
    return true;
}

bool makeAll(const Options& options, const std::vector<Material>& list) {
    std::vector<Material> missing;
    for (const Material& material : list) {
        if (tableState(options.directory, material) != TableState::Complete) {
            missing.push_back(material);
        }
    }
    std::error_code status;
    std::filesystem::create_directories(options.directory, status);
    if (status) {
        std::fprintf(stderr, "vatro-tbgen: %s: %s\n", options.directory.c_str(),
                     status.message().c_str());
        return false;
    }
    const std::size_t kept = list.size() - missing.size();
    if (kept > 0) std::printf("%zu of %zu tables are already there\n", kept, list.size());
    return forEachEnding(
        missing, [&](const Material& material, Progress& progress, std::string& error) {
            GeneratorOptions generator;
            generator.directory = options.directory;
            generator.threads = options.threads;
            generator.progress = [&](const TableProgress& table) {
                progress.update(table.step, table.part);
                return !isInterrupted;
            };
            if (!makeTable(material, generator, error)) return false;
            std::error_code ignored;
            const auto size =
                std::filesystem::file_size(tablePath(options.directory, material), ignored);
            char text[64];
            std::snprintf(text, sizeof(text), "%8.1f s %12llu bytes", progress.taskSeconds(),
                          static_cast<unsigned long long>(size));
            progress.endTask(text);
            return true;
        });
}

bool verifyAll(const Options& options, const std::vector<Material>& list) {
    return forEachEnding(
        list, [&](const Material& material, Progress& progress, std::string& error) {
            const auto partDone = [&](double part) {
                progress.update("verifying", part);
                return !isInterrupted;
            };
            if (!verifyTable(options.directory, material, options.threads, partDone, error)) {
                return false;
            }
            progress.endTask("verified");
            return true;
        });
}

std::string describe(const TableStatistics::Side& side, const char* name) {
    std::string text = std::string("\n    ") + name + " to move: wins " +
                       std::to_string(side.wins) + ", draws " + std::to_string(side.draws) +
                       ", losses " + std::to_string(side.losses);
    if (side.wins > 0) {
        text += "\n      mates in at most " + std::to_string((side.longestWin + 1) / 2) + ": " +
                side.longestWinFen;
    }
    if (side.losses > 0) {
        text += "\n      is mated in at most " + std::to_string(side.longestLoss / 2) + ": " +
                side.longestLossFen;
    }
    return text;
}

bool describeAll(const Options& options, const std::vector<Material>& list) {
    return forEachEnding(
        list, [&](const Material& material, Progress& progress, std::string& error) {
            TableStatistics statistics;
            if (!countTable(options.directory, material, options.threads, statistics, error)) {
                return false;
            }
            std::string text = std::to_string(statistics.fileSize) + " bytes";
            text += describe(statistics.side[White], "White");
            if (!material.isSymmetric()) text += describe(statistics.side[Black], "Black");
            progress.endTask(text);
            return true;
        });
}

int run(int argc, char** argv) {
    Options options;
    std::string error;
    if (!readOptions(argc, argv, options, error)) {
        std::fprintf(stderr, "vatro-tbgen: %s\n%s", error.c_str(), usage);
        return ExitUsage;
    }
    if (options.printsHelp) {
        std::fputs(usage, stdout);
        return EXIT_SUCCESS;
    }
    if (options.threads == 0) {
        options.threads = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    }
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    std::signal(SIGHUP, interrupt);
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is an error like a full disk

    const bool makesTables = !options.verifies && !options.printsStatistics;
    std::vector<Material> list = allMaterials(options.pieces);
    for (const Material& material : options.endings) {
        const auto add = [&](const Material& ending) {
            if (std::find(list.begin(), list.end(), ending) == list.end()) list.push_back(ending);
        };
        if (makesTables) {
            for (const Material& needed : withAllSuccessors(material)) {
                add(needed);
            }
        }
        add(material);
    }
    if (makesTables) return makeAll(options, list) ? EXIT_SUCCESS : EXIT_FAILURE;
    if (options.verifies && !verifyAll(options, list)) return EXIT_FAILURE;
    if (options.printsStatistics && !describeAll(options, list)) return EXIT_FAILURE;
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vatro::egtb

int main(int argc, char** argv) {
    try {
        return vatro::egtb::run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("vatro-tbgen: out of memory\n", stderr);
        return EXIT_FAILURE;
    }
}
