// egtb/generator/loaded_table.h - a finished table, inflated into memory.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "egtb/generator/parallel.h"
#include "egtb/generator/status.h"
#include "egtb/large_array.h"
#include "egtb/position.h"
#include "egtb/table_file.h"

namespace vatro::egtb {

class LoadedTable {
  public:
    /// Reads the table of an ending from a directory: both stored sides to move, or only the half
    /// that answers for one of them. Throws std::bad_alloc.
    Status load(const std::string& directory,
                const Material& material,
                const Workers& workers,
                std::optional<Colour> toMove = std::nullopt);

    /// Bytes that the half for one side to move takes.
    static std::uint64_t bytesOfSide(const Material& material);

    const TableHeader& header() const { return file->header(); }

    /// The value code of a legal position; `isSwapped` as in TableNumbers::offsetOf.
    std::uint8_t codeOf(const Position& position, bool isSwapped) const {
        return values[file->numbers().offsetOf(position, isSwapped) - firstValue];
    }
    /// The same for the positions that differ from a legal one in the black king's square only, for
    /// each of `kings`, which make it legal.
    void codesOf(const Position& position,
                 bool isSwapped,
                 SquareMask kings,
                 std::array<std::uint8_t, 64>& codes) const;

  private:
    std::unique_ptr<TableFile> file;
    std::uint64_t firstValue = 0;  // in the file, of those in `values`
    LargeArray<std::uint8_t> values;
};

/// The path of an ending's table in a directory.
std::string tablePath(const std::string& directory, const Material& material);

}  // namespace vatro::egtb
