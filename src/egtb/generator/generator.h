// src/egtb/generator/generator.h - makes tables, the smaller ones first.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "egtb/material.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

/// How far the work on one table is.
struct TableProgress {
    const char* step;  // what is being done
    double part;       // of the whole table, 0.0 to 1.0; an estimate
};

struct GeneratorOptions {
    std::string directory = ".";
    int threads = 1;
    int blockBits = DefaultBlockBits;
    /// Called from time to time, on the caller's thread; false ends the work.
    std::function<bool(const TableProgress&)> progress = [](const TableProgress&) { return true; };
};

enum class TableState { Complete, Missing, Damaged, Foreign };
/// Whether the directory has a usable table of the ending.
TableState tableState(const std::string& directory, const Material& material);

/// Makes the table of one ending, whose smaller endings are there. False on failure, with a line
/// for the user in `error` and nothing half-made left behind.
bool makeTable(const Material& material, const GeneratorOptions& options, std::string& error);

/// Makes those tables of a list that are not there yet, in its order, as returned by allMaterials.
bool makeTables(const std::vector<Material>& list,
                const GeneratorOptions& options,
                std::string& error);

}  // namespace vatro::egtb
