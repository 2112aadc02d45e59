// src/egtb/generator/table_writer.h - puts a finished ending on disk.
//
// The file is written beside its place, synced and then renamed: under its own name a table is
// complete, whatever happens to the program or the machine.
#pragma once

#include <functional>
#include <string>

#include "egtb/generator/ending.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

/// Called with the part that is done, 0.0 to 1.0; false ends the work.
using PartDone = std::function<bool(double part)>;

/// Writes the table of a solved ending to `path`. False on failure, with a line for the user in
/// `error` and nothing left on disk. Throws std::bad_alloc.
bool writeTable(const Ending& ending,
                const Material& material,
                const std::string& path,
                int blockBits,
                int threads,
                const PartDone& partDone,
                std::string& error);

}  // namespace vatro::egtb
