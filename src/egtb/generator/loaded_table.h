// src/egtb/generator/loaded_table.h - a finished table, inflated into memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "egtb/position.h"
#include "egtb/table_file.h"

namespace vatro::egtb {

class LoadedTable {
  public:
    /// Reads the table of an ending from a directory. False on failure, with a line for the user
    /// in `error`. Throws std::bad_alloc.
    bool load(const std::string& directory,
              const Material& material,
              int threads,
              std::string& error);

    const TableHeader& header() const { return file->header(); }

    /// The value code of a legal position; `isSwapped` as in TableFile::offsetOf.
    std::uint8_t codeOf(const Position& position, bool isSwapped) const {
        return values[file->offsetOf(position, isSwapped)];
    }

  private:
    std::unique_ptr<TableFile> file;
    std::vector<std::uint8_t> values;
};

std::string tablePath(const std::string& directory, const Material& material);

}  // namespace vatro::egtb
