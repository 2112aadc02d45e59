// egtb/generator/generator.h - makes tables, the smaller ones first.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "egtb/generator/parallel.h"
#include "egtb/generator/status.h"
#include "egtb/material.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

/// Told how the work goes, on the thread that makes the tables.
class GeneratorListener {
  public:
    virtual ~GeneratorListener() = default;

    /// Before the first table: those of the list that are there already, and those to make.
    virtual void runBegins(std::size_t /*kept*/, const std::vector<Material>& /*missing*/) {}
    virtual void tableBegins(const Material&) {}
    /// `step` says what is being done, `part` how much of the table is done, 0.0 to 1.0, as an
    /// estimate. Called from time to time; false ends the work.
    virtual bool advances(const char* /*step*/, double /*part*/) { return true; }
    virtual void tableEnds(const Material&, std::uint64_t /*fileSize*/) {}
    /// Another process has made the table meanwhile.
    virtual void tableIsThere(const Material&) {}
    /// A line for the user about something that does not end the work.
    virtual void warns(const std::string& /*line*/) {}
};

struct GeneratorOptions {
    std::string directory = ".";
    Workers workers;
    int blockBits = DefaultBlockBits;
};

enum class TableState {
    Complete,
    Missing,
    Damaged,    // to be made again
    LeftAlone,  // by another program or a newer version, or unreadable
};
struct TableCheck {
    TableState state;
    std::string line;  // for the user, when the file is left alone
};
/// What a directory has of an ending's table. Checks all its checksums.
TableCheck checkTable(const std::string& directory, const Material& material);

/// Bytes of memory that the making of a table takes.
std::uint64_t memoryToMake(const Material& material);

/// Makes those tables of a list that are not there yet, in its order, in which each table follows
/// those that it needs. Checks all that the run needs before the first table. Stops at the first
/// failure; nothing half-made is left behind. Several processes may work in one directory: each
/// table is made by one of them.
Status makeTables(const std::vector<Material>& list,
                  const GeneratorOptions& options,
                  GeneratorListener& listener);

}  // namespace vatro::egtb
