// egtb/generator/generator.cpp - a table from start to finish, and a list of tables.
#include "egtb/generator/generator.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <new>
#include <thread>

#include "egtb/generator/ending.h"
#include "egtb/generator/loaded_table.h"
#include "egtb/generator/part_file.h"
#include "egtb/generator/resources.h"
#include "egtb/generator/table_writer.h"

namespace vatro::egtb {
namespace {

// Shares of the time of one table, measured with five-piece endings.
constexpr double PreparePart = 0.2;
constexpr double SolvePart = 0.5;
constexpr double WritePart = 1 - PreparePart - SolvePart;
// The number of plies is not known in advance. After this many, 63% of the search counts as done;
// it approaches 100% ever more slowly.
constexpr double TypicalPlies = 50;
// How often to look whether another process has finished its table.
constexpr std::chrono::milliseconds WaitInterval{200};
// Of a file to the number of its values; the mean of all tables of up to five pieces.
constexpr double TypicalCompression = 0.17;

std::string megabytes(std::uint64_t bytes) { return std::to_string(bytes >> 20) + " MB"; }

Status checkMemory(const Material& material) {
    const std::uint64_t available = availableMemory();
    const std::uint64_t needed = memoryToMake(material);
    if (available == 0 || needed <= available) return Status::good();
    return Status::failure(material.name() + " needs " + megabytes(needed) +
                           " of memory, but only " + megabytes(available) + " can be had");
}

/// What the run needs: memory for its largest table, room on the disk.
Status checkResources(const std::vector<Material>& missing, const std::string& directory) {
    if (missing.empty()) return Status::good();
    const auto largest = std::max_element(
        missing.begin(), missing.end(),
        [](const Material& a, const Material& b) { return memoryToMake(a) < memoryToMake(b); });
    Status status = checkMemory(*largest);
    if (!status.isGood()) return status;
    double bytes = 0;
    for (const Material& material : missing) {
        const std::uint64_t values = makeHeader(material, DefaultBlockBits).valueCount();
        bytes += TypicalCompression * static_cast<double>(values);
    }
    const std::uint64_t space = freeDiskSpace(directory);
    if (space == 0 || bytes <= static_cast<double>(space)) return status;
    return Status::failure("the tables will take about " +
                           megabytes(static_cast<std::uint64_t>(bytes)) + ", but only " +
                           megabytes(space) + " are free in " + directory);
}

/// Waits until the file is ours or another process has made the table; `isThere` says which.
Status claimTable(const Material& material,
                  const GeneratorOptions& options,
                  GeneratorListener& listener,
                  PartFile& file,
                  bool& isThere) {
    for (;;) {
        switch (file.claim()) {
            case File::Claim::NotPlain:
            case File::Claim::Failed:
                return Status::failure(file.fault());
            case File::Claim::Taken:
                if (options.workers.areStopped() ||
                    !listener.advances("waiting for another process", 0)) {
                    return Status::interrupted();
                }
                std::this_thread::sleep_for(WaitInterval);
                break;
            case File::Claim::Unlocked:
                listener.warns("the file system of " + options.directory +
                               " gives no locks: let no other process make " + material.name() +
                               " there");
                [[fallthrough]];
            case File::Claim::Held:
                isThere = checkTable(options.directory, material).state == TableState::Complete;
                return Status::good();
        }
    }
}

Status makeTable(const Material& material,
                 const GeneratorOptions& options,
                 GeneratorListener& listener,
                 PartFile& file) {
    try {
        // Other programs may have taken memory since the run began.
        Status status = checkMemory(material);
        if (!status.isGood()) return status;
        Ending ending(material);
        if (!listener.advances("reading smaller endings", 0)) return Status::interrupted();
        status = ending.prepare(options.directory, options.workers);
        if (!status.isGood()) return status;
        status = ending.solve(options.workers, [&](int plies) {
            const double part = 1 - std::exp(-plies / TypicalPlies);
            return listener.advances("searching for mates", PreparePart + SolvePart * part);
        });
        if (!status.isGood()) return status;
        const auto partDone = [&](double part) {
            return listener.advances("writing", PreparePart + SolvePart + WritePart * part);
        };
        return writeTable(ending, material, file, options.blockBits, options.workers, partDone);
    } catch (const std::bad_alloc&) {
        return Status::failure(material.name() + ": out of memory");
    }
}

/// The smaller tables of a list that neither it nor the directory has.
Status checkNeeds(const std::vector<Material>& list, const std::string& directory) {
    for (auto material = list.begin(); material != list.end(); ++material) {
        for (const Material& needed : successors(*material)) {
            if (std::find(list.begin(), material, needed) != material) continue;
            const std::string path = tablePath(directory, needed);
            const OpenedTable opened = TableFile::open(path);
            if (opened.table) continue;
            return Status::failure(material->name() + " needs " + needed.name() + ", but " + path +
                                   " " + opened.faultText() + "; " + opened.advice());
        }
    }
    return Status::good();
}

}  // namespace

TableCheck checkTable(const std::string& directory, const Material& material) {
    const std::string path = tablePath(directory, material);
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::symlink_status(standardPath(path), error))) {
        return {TableState::Missing, {}};
    }
    const OpenedTable opened = TableFile::open(path);
    if (opened.systemError == ENOENT) {
        return {TableState::LeftAlone, path + " is a link to a file that is not there; remove it"};
    }
    switch (opened.fault) {
        case TableFault::None:
            break;
        case TableFault::Damaged:
            return {TableState::Damaged, {}};
        default:
            return {TableState::LeftAlone,
                    path + " " + opened.faultText() + " and is left alone; " + opened.advice()};
    }
    const bool isSound =
        opened.table->header().material == material && opened.table->hasSoundBlocks();
    return {isSound ? TableState::Complete : TableState::Damaged, {}};
}

std::uint64_t memoryToMake(const Material& material) { return Ending(material).memoryNeeded(); }

Status makeTables(const std::vector<Material>& list,
                  const GeneratorOptions& options,
                  GeneratorListener& listener) {
    // 1. What is there, and what the run will need.
    std::vector<Material> missing;
    for (const Material& material : list) {
        const TableCheck check = checkTable(options.directory, material);
        if (check.state == TableState::LeftAlone) return Status::failure(check.line);
        if (check.state != TableState::Complete) {
            PartFile file(tablePath(options.directory, material));
            if (!file.isClaimable()) return Status::failure(file.fault());
            missing.push_back(material);
        }
        if (options.workers.areStopped()) return Status::interrupted();
    }
    Status status = checkNeeds(missing, options.directory);
    if (!status.isGood()) return status;
    std::error_code error;
    std::filesystem::create_directories(standardPath(options.directory), error);
    if (error) return Status::failure(options.directory + ": " + error.message());
    status = checkResources(missing, options.directory);
    if (!status.isGood()) return status;
    listener.runBegins(list.size() - missing.size(), missing);
    // 2. The tables.
    for (const Material& material : missing) {
        listener.tableBegins(material);
        const std::string path = tablePath(options.directory, material);
        PartFile file(path);
        bool isThere = false;
        status = claimTable(material, options, listener, file, isThere);
        if (!status.isGood()) return status;
        if (isThere) {
            listener.tableIsThere(material);
            continue;
        }
        status = makeTable(material, options, listener, file);
        if (!status.isGood()) return status;
        const auto size = std::filesystem::file_size(standardPath(path), error);
        if (error) return Status::failure(path + ": " + error.message());
        listener.tableEnds(material, size);
    }
    return Status::good();
}

}  // namespace vatro::egtb
