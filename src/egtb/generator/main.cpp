// egtb/generator/main.cpp - vatro-tbgen: makes, checks and describes tablebases.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/console.h"
#include "base/process.h"
#include "egtb/generator/generator.h"
#include "egtb/generator/plan.h"
#include "egtb/generator/progress.h"
#include "egtb/generator/resources.h"
#include "egtb/generator/verify.h"

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
    "  --threads N   threads to use (default: one for each processor that may be used)\n"
    "  --only        make the named endings only; the tables that they need must be there\n"
    "Instead of making tables:\n"
    "  --verify      check the value of each position against its moves\n"
    "  --stats       print wins, draws, losses and the longest mates\n"
    "  --list        print for each ending, after those it needs: name, pieces, megabytes to make\n"
    "                it, and what it needs\n"
    "  --makefile    print a makefile that makes each table by a command of its own\n"
    "  --help        print this text\n";

enum class Task { Make, Verify, Statistics, List, Makefile, Help };

struct Options {
    std::vector<Material> endings;  // named ones
    int pieces = 0;                 // 0: none but the named ones
    std::string directory = ".";
    int threads = 0;  // 0: not given
    bool makesOnlyNamed = false;
    Task task = Task::Make;
};

/// Reads a whole number between bounds.
bool readNumber(const char* text, int least, int most, int& number) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < least || value > most) return false;
    number = static_cast<int>(value);
    return true;
}

/// The tasks by their options.
constexpr std::pair<std::string_view, Task> taskOptions[] = {{"--verify", Task::Verify},
                                                             {"--stats", Task::Statistics},
                                                             {"--list", Task::List},
                                                             {"--makefile", Task::Makefile},
                                                             {"--help", Task::Help}};

Status readOptions(const std::vector<std::string>& arguments, Options& options) {
    constexpr int MostThreads = 1024;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool takesValue =
            argument == "--pieces" || argument == "--out" || argument == "--threads";
        if (takesValue && i + 1 == arguments.size())
            return Status::failure(argument + " needs a value");
        const auto task = std::find_if(std::begin(taskOptions), std::end(taskOptions),
                                       [&](const auto& entry) { return entry.first == argument; });
        bool isGood = true;
        if (argument == "--pieces") {
            isGood = readNumber(arguments[++i].c_str(), 3, MaxPieces, options.pieces);
        } else if (argument == "--threads") {
            isGood = readNumber(arguments[++i].c_str(), 1, MostThreads, options.threads);
        } else if (argument == "--out") {
            options.directory = arguments[++i];
        } else if (argument == "--only") {
            options.makesOnlyNamed = true;
        } else if (task != std::end(taskOptions)) {
            options.task = task->second;
        } else if (const auto material = parseMaterial(argument)) {
            options.endings.push_back(*material);
        } else {
            return Status::failure("neither an option nor an ending: " + argument);
        }
        if (!isGood) return Status::failure(argument + " does not take " + arguments[i]);
    }
    if (options.task == Task::Help) return Status::good();
    if (options.pieces == 0 && options.endings.empty()) return Status::failure("no ending given");
    if (options.makesOnlyNamed && options.pieces > 0) {
        return Status::failure("--only takes names of endings, not --pieces");
    }
    return Status::good();
}

/// The work that an ending takes, for progress: its number of values.
double workOf(const Material& material) {
    return static_cast<double>(makeHeader(material, DefaultBlockBits).valueCount());
}

/// Prints a message of failure below what has been printed so far.
void printFailure(Progress& progress, const Status& status) {
    progress.clearBar();
    std::fflush(stdout);
    std::fprintf(stderr, "vatro-tbgen: %s\n", status.line().c_str());
}

double workOfAll(const std::vector<Material>& list) {
    double total = 0;
    for (const Material& material : list) {
        total += workOf(material);
    }
    return total;
}

/// Calls `task(ending, progress)` for each ending of a list, up to the first failure.
template <typename Task>
bool forEachEnding(const std::vector<Material>& list, Task task) {
    Progress progress(workOfAll(list));
    for (const Material& material : list) {
        progress.beginTask(material.name(), workOf(material));
        const Status status = task(material, progress);
        if (status.isGood()) continue;
        printFailure(progress, status);
        return false;
    }
    return true;
}

/// Shows how the tables come along.
class Reporter : public GeneratorListener {
  public:
    explicit Reporter(const Workers& all) : workers(all) {}

    void runBegins(std::size_t kept, const std::vector<Material>& missing) override {
        if (kept > 0) {
            std::printf("%zu of %zu tables are already there\n", kept, kept + missing.size());
        }
        progress = Progress(workOfAll(missing));
    }
    void tableBegins(const Material& material) override {
        progress.beginTask(material.name(), workOf(material));
    }
    bool advances(const char* step, double part) override {
        progress.update(step, part);
        return !workers.areStopped();
    }
    void tableEnds(const Material&, std::uint64_t fileSize) override {
        char text[64];
        std::snprintf(text, sizeof(text), "%8.1f s %12llu bytes", progress.taskSeconds(),
                      static_cast<unsigned long long>(fileSize));
        progress.endTask(text);
    }
    void tableIsThere(const Material&) override { progress.endTask("was made by another process"); }
    void warns(const std::string& line) override {
        progress.clearBar();
        std::fflush(stdout);
        std::fprintf(stderr, "vatro-tbgen: %s\n", line.c_str());
    }

    Progress progress{0};

  private:
    const Workers& workers;
};

bool makeAll(const Options& options, const std::vector<Material>& list, const Workers& workers) {
    GeneratorOptions generator;
    generator.directory = options.directory;
    generator.workers = workers;
    Reporter reporter(workers);
    const Status status = makeTables(list, generator, reporter);
    if (!status.isGood()) printFailure(reporter.progress, status);
    return status.isGood();
}

bool verifyAll(const Options& options, const std::vector<Material>& list, const Workers& workers) {
    return forEachEnding(list, [&](const Material& material, Progress& progress) {
        const auto partDone = [&](double part) {
            progress.update("verifying", part);
            return !workers.areStopped();
        };
        Status status = verifyTable(options.directory, material, workers, partDone);
        if (status.isGood()) progress.endTask("verified");
        return status;
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

bool describeAll(const Options& options,
                 const std::vector<Material>& list,
                 const Workers& workers) {
    return forEachEnding(list, [&](const Material& material, Progress& progress) {
        TableStatistics statistics;
        Status status = countTable(options.directory, material, workers, statistics);
        if (!status.isGood()) return status;
        std::string text = std::to_string(statistics.fileSize) + " bytes";
        text += describe(statistics.side[White], "White");
        if (!material.isSymmetric()) text += describe(statistics.side[Black], "Black");
        progress.endTaskWithText(text);
        return status;
    });
}

bool printMakefile(const Options& options, const std::vector<Material>& list) {
    if (options.directory.find_first_of(" \t$#:;|%\\'\"") != std::string::npos) {
        std::fputs("vatro-tbgen: make cannot handle the name of the directory\n", stderr);
        return false;
    }
    const MakefileOptions makefile{options.directory, std::max(1, options.threads)};
    std::fputs(makefileOf(list, makefile).c_str(), stdout);
    return true;
}

/// The endings that the options name, each after those that it needs. Tasks that only read tables
/// leave out what was not named.
std::vector<Material> endingsOf(const Options& options) {
    std::vector<Material> list = allMaterials(options.pieces);
    const auto add = [&](const Material& ending) {
        if (std::find(list.begin(), list.end(), ending) == list.end()) list.push_back(ending);
    };
    const bool readsOnly = options.task == Task::Verify || options.task == Task::Statistics;
    for (const Material& named : options.endings) {
        if (readsOnly || options.makesOnlyNamed) {
            add(named);
            continue;
        }
        for (const Material& needed : withAllSuccessors(named)) {
            add(needed);
        }
    }
    return list;
}

int run(const std::vector<std::string>& arguments) {
    setUpConsole();
    Options options;
    const Status status = readOptions(arguments, options);
    if (!status.isGood()) {
        std::fprintf(stderr, "vatro-tbgen: %s\n%s", status.line().c_str(), usage);
        return ExitUsage;
    }

    const std::vector<Material> list = endingsOf(options);
    const Workers workers{options.threads > 0 ? options.threads : usableProcessors(),
                          &watchForInterrupt()};
    bool isDone = true;
    switch (options.task) {
        case Task::Make:
            isDone = makeAll(options, list, workers);
            break;
        case Task::Verify:
            isDone = verifyAll(options, list, workers);
            break;
        case Task::Statistics:
            isDone = describeAll(options, list, workers);
            break;
        case Task::List:
            std::fputs(describeNeeds(list).c_str(), stdout);
            break;
        case Task::Makefile:
            isDone = printMakefile(options, list);
            break;
        case Task::Help:
            std::fputs(usage, stdout);
            break;
    }
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace vatro::egtb

int main(int argc, char** argv) {
    try {
        return vatro::egtb::run(vatro::programArguments(argc, argv));
    } catch (const std::bad_alloc&) {
        std::fputs("vatro-tbgen: out of memory\n", stderr);
        return EXIT_FAILURE;
    }
}
