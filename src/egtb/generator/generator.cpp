// src/egtb/generator/generator.cpp - one table from start to finish.
#include "egtb/generator/generator.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <new>

#include "egtb/generator/ending.h"
#include "egtb/generator/loaded_table.h"
#include "egtb/generator/table_writer.h"

namespace vatro::egtb {
namespace {

// Shares of the time of one table, from five-piece runs.
constexpr double PreparePart = 0.2;
constexpr double SolvePart = 0.5;
constexpr double WritePart = 1 - PreparePart - SolvePart;
// How many plies an ending takes is not known before; the bar nears its end ever more slowly.
constexpr double TypicalPlies = 50;

/// Memory that the system can still give, in bytes; 0 when it does not say.
std::uint64_t freeMemory() {
    std::ifstream file("/proc/meminfo");
    std::string key;
    std::uint64_t kilobytes = 0;
    std::string unit;
    while (file >> key >> kilobytes) {
        std::getline(file, unit);
        if (key == "MemAvailable:") return kilobytes * 1024;
    }
    return 0;
}

std::string megabytes(std::uint64_t bytes) { return std::to_string(bytes >> 20) + " MB"; }

}  // namespace

TableState tableState(const std::string& directory, const Material& material) {
    const std::string path = tablePath(directory, material);
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
        return TableState::Missing;
    }
    std::string fault;
    bool isForeign = false;
    const auto table = TableFile::open(path, fault, isForeign);
    if (table && table->header().material == material) return TableState::Complete;
    return isForeign ? TableState::Foreign : TableState::Damaged;
}

bool makeTable(const Material& material, const GeneratorOptions& options, std::string& error) {
    const std::string path = tablePath(options.directory, material);
    if (tableState(options.directory, material) == TableState::Foreign) {
        error = path + " was not written by this program and is left alone";
        return false;
    }
    try {
        Ending ending(material);
        const std::uint64_t available = freeMemory();
        if (available > 0 && ending.memoryNeeded() > available) {
            error = material.name() + " needs " + megabytes(ending.memoryNeeded()) +
                    " of memory, but only " + megabytes(available) + " are free";
            return false;
        }
        if (!options.progress({"reading smaller endings", 0})) {
            error = "interrupted";
            return false;
        }
        if (!ending.prepare(options.directory, options.threads, error)) return false;
        const auto plyDone = [&](int plies) {
            const double part = 1 - std::exp(-plies / TypicalPlies);
            return options.progress({"searching for mates", PreparePart + SolvePart * part});
        };
        if (!ending.solve(options.threads, plyDone, error)) return false;
        const auto partDone = [&](double part) {
            return options.progress({"writing", PreparePart + SolvePart + WritePart * part});
        };
        return writeTable(ending, material, path, options.blockBits, options.threads, partDone,
                          error);
    } catch (const std::bad_alloc&) {
        error = material.name() + ": out of memory";
        return false;
    }
}

bool makeTables(const std::vector<Material>& list,
                const GeneratorOptions& options,
                std::string& error) {
    for (const Material& material : list) {
        if (tableState(options.directory, material) == TableState::Complete) continue;
        if (!makeTable(material, options, error)) return false;
    }
    return true;
}

}  // namespace vatro::egtb
